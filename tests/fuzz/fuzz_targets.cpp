#include "fuzz/fuzz_targets.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>

#include "base/text.h"
#include "doubles/temporary_directory.h"
#include "export/item_form.h"
#include "import/apple_message.h"
#include "import/calendar_item.h"
#include "import/calendar_text.h"
#include "import/import.h"
#include "import/mapi_recurrence.h"
#include "import/mbox_reader.h"
#include "import/msg_file.h"
#include "import/source_file.h"
#include "import/vcard.h"
#include "mail/charset.h"
#include "mail/compressed_rtf.h"
#include "mail/header_parameters.h"
#include "mail/header_text.h"
#include "mail/html_text.h"
#include "mail/kept_fields.h"
#include "mail/mail_addresses.h"
#include "mail/mime_message.h"
#include "mail/rtf_text.h"
#include "mail/tnef.h"
#include "mail/transfer_encoding.h"
#include "stores/imap/mailbox_name.h"
#include "stores/imap/message_data.h"
#include "stores/imap/response.h"
#include "stores/imap/uid_set.h"

namespace tidyfold {
namespace {

void Expect(bool right, const char* what) {
  if (!right) throw Fuzz_Find(what);
}

void Expect_Text(const std::string& text) {
  Expect(Valid_Utf8(text) == text, "a text is no UTF-8");
}

void Expect_Line(const std::string& text) {
  Expect_Text(text);
  const bool control = std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20; });
  Expect(!control, "a line has control characters");
}

template <class Read>
void Unless_Refused(Read read) {
  try {
    read();
  } catch (const Message_Error&) {
  }
}

void Expect_Whole(const Item_Form& form, const std::string& what) {
  if (!form.losses.empty()) throw Fuzz_Find((what + " loses " + form.losses.front()).c_str());
}

// What came in goes out and comes in again.
void Expect_Goes_Out(const New_Item& item) {
  const auto marks = [&](New_Item& read) {
    read.unread = item.unread;
    read.flagged = item.flagged;
    read.answered = item.answered;
  };
  Item_Form form;
  switch (Kind_Of_Item(item)) {
    case Item_Kind::Message:
      Unless_Refused([&] { Expect_Whole(Mbox_Form(item), "an entry of an mbox"); });
      form = Message_Form(item, marks, true);
      break;
    case Item_Kind::Text:
      form = Text_Form(item);
      break;
    case Item_Kind::Calendar:
      form = Calendar_Form(item);
      break;
    case Item_Kind::Card:
      form = Card_Form(item);
      break;
  }
  Expect_Whole(form, "a form");
}

void Run_Message(const std::string& bytes) {
  Unless_Refused([&] {
    const New_Item item = Read_Mime_Message(bytes);
    Expect(item.raw_message == bytes || Begins_With_Kept_Block(bytes), "the raw message is another");
    for (const std::string* line : {&item.sender, &item.sender_address, &item.recipients, &item.subject,
                                    &item.message_id, &item.list_id})
      Expect_Line(*line);
    Expect_Text(item.body);
    for (const New_Attachment& attachment : item.attachments) {
      Expect_Line(attachment.name);
      Expect(attachment.size >= 0, "an attachment has no size");
    }
    Expect_Goes_Out(item);
  });
}

void Run_Mbox(const std::string& bytes) {
  static const Temporary_Directory directory;
  Source_File file(Write_Bytes(directory / "mbox", bytes));
  Mbox_Reader reader(file, [] {});
  std::int64_t end = 0;
  while (const auto message = reader.Next()) {
    Expect(message->begin >= end && message->begin < message->content && message->content <= message->end,
           "messages overlap");
    const std::string between = file.Read(end, message->begin - end);
    Expect(between.find_first_not_of("\r\n") == std::string::npos, "something lies between two messages");
    end = message->end;
    Expect(reader.Text(*message).size() <= static_cast<std::size_t>(end - message->content),
           "a message is longer than its place");
    Parse_Mail_Date(reader.Separator(*message), true);
  }
  Expect(file.Read(end, file.Size() - end).find_first_not_of("\r\n") == std::string::npos,
         "the end is left over");
}

void Run_Headers(const std::string& bytes) {
  Expect_Line(Header_Text(bytes));
  Expect_Line(Header_Text(bytes, "windows-1251"));
  Expect_Line(Header_Identity(bytes));
  for (const std::string_view name : {"filename", "charset", "name"})
    Expect_Line(Header_Parameter(bytes, name));
  for (const Mail_Address& address : Header_Addresses(bytes)) {
    Expect_Line(address.name);
    Expect_Line(address.address);
  }
  Header_Word(bytes);
  Parse_Mail_Date(bytes);
}

void Run_Encodings(const std::string& bytes) {
  Expect(static_cast<std::int64_t>(Decode_Base64(bytes).size()) == Decoded_Base64_Size(bytes),
         "the size of decoded base64 is another");
  Decode_Transfer(bytes, "quoted-printable");
  std::string text = bytes;
  Take_Uuencoded(text);
  Expect(text.size() <= bytes.size(), "a text has grown");
  for (const std::string_view charset : {"", "utf-8", "iso-2022-jp", "gb18030", "utf-7", "utf-16"})
    Expect_Text(To_Utf8(bytes, charset));
}

void Run_Tnef(const std::string& bytes) {
  const auto content = Read_Tnef(bytes);
  if (!content) return;
  Expect_Text(content->body);
  for (const New_Attachment& attachment : content->attachments) Expect_Line(attachment.name);
}

void Run_Html(const std::string& bytes) {
  Expect_Text(Html_To_Text(To_Utf8(bytes, Html_Charset(bytes))));
}

void Run_Rtf(const std::string& bytes) {
  Expect_Text(Rtf_To_Text(bytes));
  Expect_Text(Rtf_To_Text(Decompress_Rtf(bytes)));
}

void Expect_Item(const New_Item& item) {
  for (const std::string& line : {item.subject, item.sender, item.recipients}) Expect_Line(line);
  Expect_Text(item.body);
  Expect_Goes_Out(item);
}

void Run_Apple(const std::string& bytes) {
  const Apple_Message apple = Split_Apple_Frame(bytes);
  Expect(bytes.find(apple.message) != std::string::npos, "the message is not what lies in the frame");
  std::string whole = apple.message;
  Put_Parts_Back("nowhere/Messages/1.partial.emlx", whole);
  Expect(whole == apple.message, "a message has changed for which nothing lies beside it");
}

void Run_Calendar(const std::string& bytes) {
  for (const Calendar_Item& item : Items_Of_Calendars(bytes)) {
    if (item.problem.empty()) Unless_Refused([&] { Expect_Item(Read_Calendar_Item(item.Calendar())); });
  }
}

void Run_Contacts(const std::string& bytes) {
  std::size_t end = 0;
  for (const Card_Text& card : Cards_In(bytes)) {
    Expect(card.begin >= end && card.begin + card.size <= bytes.size(), "cards overlap");
    end = card.begin + card.size;
    Unless_Refused([&] { Expect_Item(Read_Vcard(bytes.substr(card.begin, card.size))); });
  }
}

void Run_Msg(const std::string& bytes) {
  Unless_Refused([&] { Expect_Item(Read_Msg(bytes)); });
}

void Run_Series(const std::string& bytes) {
  for (const bool of_appointment : {false, true}) {
    const auto series = Read_Mapi_Series(bytes, of_appointment);
    if (series) Expect(series->rule.starts_with("FREQ="), "a series without a rule");
  }
}

// However the bytes come in, the same responses come out.
void Run_Imap(const std::string& bytes) {
  using namespace imap;
  constexpr Response_Limits limits{1 << 16, 1 << 20, 50};
  const auto responses = [&](std::size_t at_once) {
    std::vector<std::string> found;
    Response_Reader reader(limits);
    try {
      for (std::size_t at = 0; at < bytes.size(); at += at_once) {
        reader.Feed(std::string_view(bytes).substr(at, at_once));
        while (auto response = reader.Next()) found.push_back(std::move(*response));
      }
    } catch (const Protocol_Error&) {
      found.push_back("refused");
    }
    return found;
  };
  const std::vector<std::string> all = responses(bytes.size() + 1);
  Expect(all == responses(7), "the responses depend on how the bytes come in");
  for (const std::string& text : all) {
    try {
      const Response response(text, limits);
      Expect_Line(response.Text());
      for (const Value& value : response.Arguments()) {
        Expect_Text(Decode_Mailbox_Name(value.Text()));
        try {
          const std::vector<Uid> uids = Parse_Uid_Set(value.Text().substr(0, 12));
          if (uids.size() < 1000) Expect(Parse_Uid_Set(Format_Uid_Set(uids)) == uids, "a set is another");
        } catch (const Protocol_Error&) {
        }
      }
      if (response.Name() == "FETCH") {
        const Message_Data data = Read_Message_Data(response);
        Expect_Line(data.subject);
        Expect_Line(data.sender);
        Expect(data.size >= 0, "a message has no size");
      }
    } catch (const Protocol_Error&) {
    }
  }
  const std::string name = Valid_Utf8(bytes.substr(0, 200));
  if (name.find('\0') == std::string::npos)
    Expect(Decode_Mailbox_Name(Encode_Mailbox_Name(name)) == name, "a mailbox's name is another");
}

constexpr std::array targets = {
    Fuzz_Target{"apple", Run_Apple},       Fuzz_Target{"calendar", Run_Calendar},
    Fuzz_Target{"contacts", Run_Contacts}, Fuzz_Target{"encodings", Run_Encodings},
    Fuzz_Target{"headers", Run_Headers},   Fuzz_Target{"html", Run_Html},
    Fuzz_Target{"imap", Run_Imap},         Fuzz_Target{"mbox", Run_Mbox},
    Fuzz_Target{"message", Run_Message},   Fuzz_Target{"msg", Run_Msg},
    Fuzz_Target{"rtf", Run_Rtf},           Fuzz_Target{"series", Run_Series},
    Fuzz_Target{"tnef", Run_Tnef},
};

}  // namespace

std::span<const Fuzz_Target> Fuzz_Targets() {
  static const bool ready = (g_mime_init(), true);
  static_cast<void>(ready);
  return targets;
}

}  // namespace tidyfold
