// Runs and their items as text: what the window's list, the command line and files of comma-separated values
// show alike.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "runs/run_log.h"

namespace tidyfold {

// "1 item was", "2 items were".
std::string Counted(std::int64_t count, const char* one, const char* many);

// "Run 12 (2024-05-03 10:12)"
std::string Run_Text(const Logged_Run& run);
// The folder's path; where the run had several stores, with the name of its store in front.
std::string Folder_Text(const Logged_Run& run, const Logged_Folder& folder);
// The places of its stores, or their names where they have none.
std::vector<std::string> Store_Texts(const Logged_Run& run);
// The day, empty where there is none.
std::string Date_Text(const Logged_Item& item);
const char* Kind_Text(Run_Kind kind);
const char* State_Text(Run_State_In_Log state);
const char* Action_Text(Item_Action action);
const char* Result_Text(Item_Result result);
// What is told of a run that was killed, once.
std::string Killed_Text(const Logged_Run& run);

// One line without its end (RFC 4180). Bytes that are no UTF-8 become U+FFFD.
std::string Csv_Line(const std::vector<std::string>& fields);

// The same columns for both; cells stand in the order of the headers.
const std::vector<std::string>& Run_Headers();
std::vector<std::string> Run_Cells(const Logged_Run& run);
const std::vector<std::string>& Run_Item_Headers();
std::vector<std::string> Run_Item_Cells(const Logged_Run& run, const Logged_Item& item);

}  // namespace tidyfold
