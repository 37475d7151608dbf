// Dovecot's `imap` program over a pipe, on a mailbox of the test's own.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "doubles/requirements.h"
#include "doubles/temporary_directory.h"
#include "outlook/store_session.h"
#include "stores/imap/client.h"
#include "stores/imap/open_account.h"

namespace tidyfold::imap {

inline constexpr const char* dovecot_program = "/usr/lib/dovecot/imap";

// What happens to the bytes on their way.
struct Wire {
  std::vector<std::string> hidden;  // capabilities that the server does not seem to have
  std::int64_t bytes_left = -1;     // then the connection drops; -1: it does not
  std::int64_t and_again = -1;      // what `bytes_left` is then
  bool falls_silent = false;        // instead
  int connections = 0;
  std::string sent;  // by the store
};

class Wired_Transport : public Transport {
 public:
  Wired_Transport(std::unique_ptr<Transport> inner, Wire& wire) : inner_(std::move(inner)), wire_(wire) {
    ++wire_.connections;
  }
  std::optional<std::size_t> Read(char* buffer, std::size_t size) override {
    if (wire_.falls_silent && wire_.bytes_left == 0) return std::nullopt;
    const auto got = inner_->Read(buffer, Allowed(size));
    if (!got) return got;
    Count(*got);
    const std::string_view text(buffer, *got);
    for (const std::string& name : wire_.hidden)
      for (std::size_t at = text.find(" " + name); at != text.npos; at = text.find(" " + name, at + 1))
        buffer[at + 1] = '_';
    return got;
  }
  std::size_t Write(std::string_view bytes) override {
    const std::size_t sent = inner_->Write(bytes.substr(0, Allowed(bytes.size())));
    wire_.sent += bytes.substr(0, sent);
    Count(sent);
    return sent;
  }
  int Read_Descriptor() const override { return inner_->Read_Descriptor(); }

 private:
  std::size_t Allowed(std::size_t size) {
    if (wire_.bytes_left < 0) return size;
    if (wire_.bytes_left == 0) {
      wire_.bytes_left = wire_.and_again;
      throw Connection_Error("The connection to the mail server was lost.");
    }
    return std::min(size, static_cast<std::size_t>(wire_.bytes_left));
  }
  void Count(std::size_t bytes) {
    if (wire_.bytes_left > 0) wire_.bytes_left -= static_cast<std::int64_t>(bytes);
  }
  std::unique_ptr<Transport> inner_;
  Wire& wire_;
};

class Dovecot {
 public:
  // Without them it has the Inbox alone.
  enum class Special_Folders { Yes, No };
  explicit Dovecot(Special_Folders folders = Special_Folders::Yes, const std::string& settings = {}) {
    std::string text =
        "log_path = " + (directory_ / "log").string() +
        "\nmail_location = maildir:" + (directory_ / "mail").string() +
        "\nbase_dir = " + (directory_ / "run").string() +
        "\nstats_writer_socket_path =\nssl = no\nmail_fsync = never\nnamespace inbox {\n  inbox = yes\n"
        "  separator = /\n";
    if (folders == Special_Folders::Yes)
      text +=
          "  mailbox Papierkorb {\n    auto = create\n    special_use = \\Trash\n  }\n"
          "  mailbox Sent {\n    auto = create\n    special_use = \\Sent\n  }\n";
    text += "}\n" + settings;
    Write_Bytes(directory_ / "dovecot.conf", text);
    // It serves nobody's mail as the superuser.
    if (geteuid() == 0) {
      as_user_ = {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
      if (chown(directory_.Path().c_str(), 65534, 65534) != 0) throw std::runtime_error("no chown");
    }
  }
  static bool Is_Installed() { return std::filesystem::exists(dovecot_program); }

  std::unique_ptr<Transport> Start() const {
    std::vector<std::string> words = as_user_;
    for (const std::string& word :
         {std::string("/usr/bin/env"), std::string("USER=tester"), "HOME=" + directory_.Path().string(),
          std::string(dovecot_program), std::string("-c"), (directory_ / "dovecot.conf").string()})
      words.push_back(word);
    return Start_Program(words);
  }
  const Temporary_Directory& Directory() const { return directory_; }

 private:
  Temporary_Directory directory_;
  std::vector<std::string> as_user_;
};

// Another program at the same mailbox.
class Other_Client {
 public:
  explicit Other_Client(const Dovecot& dovecot)
      : client_(dovecot.Start(), interruption_, std::chrono::seconds(20)) {
    client_.Greet();
  }
  void Do(const std::string& command) { client_.Run(Command(command)); }
  // Returns UIDVALIDITY and UID.
  std::pair<std::uint32_t, Uid> Append(const std::string& mailbox, const std::string& message,
                                       const std::string& flags = "",
                                       const std::string& date = "17-Jul-2020 12:44:25 +0000") {
    const auto answer = client_.Run(
        Command("APPEND ").String(mailbox).Raw(" (" + flags + ") \"" + date + "\" ").String(message));
    const auto told = answer->Arguments();
    return {told.at(0).Number_32().value(), told.at(1).Number_32().value()};
  }
  // How many messages have a property.
  std::size_t Count(const std::string& mailbox, const std::string& property) {
    std::size_t count = 0;
    client_.Run(Command("SELECT ").String(mailbox));
    client_.Run(Command("SEARCH " + property), [&](const Response& response) {
      if (response.Name() == "SEARCH") count = response.Arguments().size();
    });
    return count;
  }
  void Empty(const std::string& mailbox) {
    if (Subjects(mailbox).empty()) return;
    Do("STORE 1:* +FLAGS (\\Deleted)");
    Do("EXPUNGE");
  }
  std::vector<std::string> Subjects(const std::string& mailbox) {
    std::vector<std::string> subjects;
    client_.Run(Command("SELECT ").String(mailbox));
    client_.Run(Command("UID FETCH 1:* (FLAGS BODY.PEEK[HEADER.FIELDS (SUBJECT)])"),
                [&](const Response& response) {
                  if (response.Name() != "FETCH") return;
                  std::string line(response.Arguments().front().List().back().Text());
                  line = line.substr(std::min<std::size_t>(9, line.size()));
                  subjects.push_back(line.substr(0, line.find('\r')));
                });
    return subjects;
  }

 private:
  Interruption interruption_;
  Client client_;
};

inline std::string Mail(const std::string& subject, const std::string& type = "text/plain",
                        const std::string& text = "Text\r\n") {
  return "From: =?utf-8?q?Zo=C3=AB?= <zoe@example.org>\r\nSubject: " + subject +
         "\r\nDate: Fri, 17 Jul 2020 12:44:25 +0000\r\nContent-Type: " + type + "\r\n\r\n" + text;
}

}  // namespace tidyfold::imap
