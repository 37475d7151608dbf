// Words that made-up stores are put together from. All names are invented.
#pragma once

#include <array>

namespace tidyfold::sample {

inline constexpr std::array first_names{
    "Anna",  "Björn", "Carla", "Dmitri", "Ewa",   "Fatima", "Gregor", "Hélène", "Igor",  "Jonas",
    "Karin", "Łucja", "Marta", "Nils",   "Olga",  "Pedro",  "Quinn",  "Rosa",   "Søren", "Tamsin",
    "Umar",  "Vera",  "Wilma", "Xenia",  "Yusuf", "Zoë",    "Bruno",  "Clara",  "Edgar", "Ελένη"};

inline constexpr std::array last_names{
    "Ahlgren",  "Brandl",   "Castelnuovo", "Dunmore",   "Ehrlich",   "Farrow",    "Grünwald",
    "Holloway", "Ivanova",  "Jørgensen",   "Kowalska",  "Lindqvist", "Marchetti", "Nwosu",
    "O'Hara",   "Petrov",   "Quiroga",     "Rasmussen", "Sánchez",   "Thornbury", "Ueda",
    "Vasquez",  "Whitlock", "Yılmaz",      "Zeller",    "Παππάς"};

inline constexpr std::array companies{"Kornblume Garden Supplies", "Cycling Club Westbank", "Harbour Library",
                                      "Nordlicht Travel",          "City Waterworks",       "Café Møller"};

inline constexpr std::array topics{
    "garden fence",      "annual report",   "harbour bridge",  "summer party",     "budget",
    "new server",        "holiday plans",   "choir rehearsal", "bicycle repair",   "museum visit",
    "kitchen",           "training course", "invoice",         "newsletter",       "travel expenses",
    "Straßenfest",       "résumé",          "smørrebrød",      "first-aid course", "office move",
    "insurance",         "school concert",  "software update", "price list",       "train tickets",
    "quarterly figures", "water meter",     "birthday",        "board meeting",    "library books"};

inline constexpr std::array mail_subjects{
    "Question about the %", "%: next steps",      "Your % for next week", "Minutes: %",
    "Reminder: %",          "% - please confirm", "Thanks for the %",     "Photos of the %",
    "Change of plan: %",    "% (second attempt)", "Offer for the %",      "Who can help with the %?"};

inline constexpr std::array prefixes{"", "", "", "", "", "Re: ", "Re: ", "Fw: ", "AW: ", "Re: Re: "};

inline constexpr std::array sentences{
    "I have looked at it again and think that we should wait until the end of the month.",
    "Could you send me the latest version before Thursday?",
    "The figures that you asked for are in the attachment.",
    "From what I hear the others agree.",
    "Nobody was there yesterday, so I left the key under the flower pot.",
    "Please tell me whether the new date suits you.",
    "The price has gone up by 12 % since last year.",
    "We will need about 40 chairs, two tables and something to drink.",
    "Das Wetter war herrlich, und die Bücher sind alle wieder da.",
    "If you cannot come, let us talk on the phone.",
    "The second page is missing; I will ask for it.",
    "It took longer than expected, but now it works.",
    "Best leave everything as it is until the inspector has been here.",
    "Merci beaucoup pour votre aide, à bientôt !"};

inline constexpr std::array note_starts{"Shopping: flour, eggs, çay, lamp oil", "Ideas for the % ",
                                        "Call about the %", "Measure the window again (%)",
                                        "PIN of the bicycle lock: ask % "};

inline constexpr std::array attachment_names{"Plan.pdf",      "Figures 2nd draft.xls", "IMG_0412.jpg",
                                             "Übersicht.doc", "minutes.txt",           "ticket.pdf"};

}  // namespace tidyfold::sample
