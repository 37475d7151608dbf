// Importing an mbox of 100,000 mails, beside a bare parse of the same file by GMime; and input made to cost
// much.
#include <benchmark/benchmark.h>
#include <gmime/gmime.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "import/import.h"
#include "import/mbox_reader.h"
#include "import/source_file.h"
#include "mail/mime_message.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr int message_count = 100'000;

std::string Lines(int count, const char* line) {
  std::string lines;
  for (int i = 0; i < count; ++i) lines += line;
  return lines;
}

// A plain text, two forms of one text, a long text in base64, and a text with an attachment, in turn.
std::string Content(int number) {
  const std::string plain =
      Lines(19, "The quick brown fox jumps over the lazy dog, and so does the slow one.\n");
  const std::string base64 =
      Lines(19, "VGhlIHF1aWNrIGJyb3duIGZveCBqdW1wcyBvdmVyIHRoZSBsYXp5IGRvZywgYW5kIHNvIGRv\n");
  switch (number % 4) {
    case 0:
      return "Content-Type: text/plain; charset=us-ascii\n\n" + plain;
    case 1:
      return "Content-Type: multipart/alternative; boundary=\"alternative\"\n\n--alternative\nContent-Type: "
             "text/plain; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n" +
             Lines(8, "The quick brown fox =E2=80=93 and so on =E2=80=94 jumps over the lazy dog.=\n\n") +
             "--alternative\nContent-Type: text/html; charset=utf-8\n\n<html><body>" +
             Lines(8, "<p class=\"text\">The quick &amp; brown <b>fox</b>&nbsp;jumps</p>\n") +
             "</body></html>\n--alternative--\n";
    case 2:
      return "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: base64\n\n" + base64;
    default:
      return "Content-Type: multipart/mixed; boundary=\"mixed\"\n\n--mixed\nContent-Type: text/plain; "
             "charset=iso-8859-1\n\nSee the file.\n\n--mixed\nContent-Type: "
             "application/pdf\nContent-Disposition: "
             "attachment; filename=\"report.pdf\"\nContent-Transfer-Encoding: base64\n\n" +
             base64 + "--mixed--\n";
  }
}

std::string Message(int number) {
  const std::string text = std::to_string(number);
  return "From ann@example.org Fri Aug 23 02:32:53 2002\nReturn-Path: <ann@example.org>\nReceived: from "
         "mail.example.org (mail.example.org [192.0.2.1])\n\tby mx.example.net (Postfix) with ESMTPS id " +
         text +
         "\n\tfor <bo@example.net>; Fri, 23 Aug 2002 02:32:53 -0400 (EDT)\nReceived: by mail.example.org; "
         "Fri, 23 "
         "Aug 2002 06:32:50 +0000\nFrom: =?UTF-8?B?QW5uYSBNw7xsbGVy?= <ann@example.org>\nTo: \"Lee, Bo\" "
         "<bo@example.net>, cy@example.net\nSubject: =?UTF-8?Q?Caf=C3=A9?= number " +
         text + "\nDate: Fri, 23 Aug 2002 06:32:50 +0000\nMessage-ID: <" + text +
         "@example.org>\nMIME-Version: 1.0\nX-Mailer: Example 1.0\n" + Content(number) + "\n";
}

class Files {
 public:
  Files() {
    std::string name = (fs::temp_directory_path() / "tidyfold-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    directory_ = name;
    std::ofstream mbox(Mbox(), std::ios::binary);
    for (int i = 0; i < message_count; ++i) mbox << Message(i);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() { fs::remove_all(directory_); }
  fs::path Mbox() const { return directory_ / "mail.mbox"; }
  fs::path Store() const { return directory_ / "store.tfs"; }

 private:
  fs::path directory_;
};

void Report_File(benchmark::State& state, const fs::path& file) {
  state.counters["file_mb"] = static_cast<double>(fs::file_size(file)) / 1e6;
}

// Of the whole process so far: run one benchmark at a time to see its own.
void Report_Memory(benchmark::State& state) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_mb"] = static_cast<double>(usage.ru_maxrss) / 1e3;
}

// Builds the objects of each message and decodes none of them.
void Parse_Bare(benchmark::State& state, const Files& files) {
  for (auto _ : state) {
    GMimeStream* stream = g_mime_stream_fs_open(files.Mbox().c_str(), 0, 0, nullptr);
    GMimeParser* parser = g_mime_parser_new_with_stream(stream);
    g_mime_parser_set_format(parser, GMIME_FORMAT_MBOX);
    int count = 0;
    while (!g_mime_parser_eos(parser)) {
      GMimeMessage* message = g_mime_parser_construct_message(parser, nullptr);
      if (message == nullptr) break;
      ++count;
      g_object_unref(message);
    }
    g_object_unref(parser);
    g_object_unref(stream);
    if (count != message_count) state.SkipWithError("messages are missing");
  }
  Report_File(state, files.Mbox());
  Report_Memory(state);
}

void Read_Messages(benchmark::State& state, const Files& files) {
  for (auto _ : state) {
    Source_File file(files.Mbox());
    Mbox_Reader reader(file, [] {});
    int count = 0;
    while (const auto message = reader.Next()) {
      benchmark::DoNotOptimize(Read_Mime_Message(reader.Text(*message)));
      ++count;
    }
    if (count != message_count) state.SkipWithError("messages are missing");
  }
  Report_Memory(state);
}

void Import_Into_Store(benchmark::State& state, const Files& files) {
  for (auto _ : state) {
    fs::remove(files.Store());
    const auto store = Embedded_Store::Create(files.Store(), "Store");
    if (Import_Source(files.Mbox(), store->Writer()).imported != message_count)
      state.SkipWithError("messages are missing");
  }
  state.counters["store_mb"] = static_cast<double>(fs::file_size(files.Store())) / 1e6;
  Report_Memory(state);
}

// Messages that cost time or memory without measure unless a reader sees to it, and an mbox without any blank
// line.
struct Hard_Input {
  const char* name;
  std::string text;
  bool mbox = false;
};

std::vector<Hard_Input> Hard_Inputs() {
  const std::string sender = "From: a@b\n";
  return {
      {"header_lines", sender + Lines(8'400'000, "a: b\n") + "\n"},
      {"tiny_parts", sender + "Content-Type: multipart/mixed; boundary=b\n\n" + Lines(1'000'000, "--b\n\n")},
      {"groups", sender + "To: " + Lines(40'000, "a:") + "\n\n"},
      {"no_blank_line", Lines(60'000, "From a@b Fri Aug 23 02:32:53 2002\nS: x\nContent-Length: 3000000\n"),
       true}};
}

void Read_Hard(benchmark::State& state, const Hard_Input& input, const Files& files) {
  const fs::path file = files.Store().replace_extension(".hard");
  std::ofstream(file, std::ios::binary) << input.text;
  for (auto _ : state) {
    Source_File source(file);
    if (input.mbox) {
      Mbox_Reader reader(source, [] {});
      while (const auto message = reader.Next()) benchmark::DoNotOptimize(reader.Text(*message));
    } else {
      benchmark::DoNotOptimize(Read_Mime_Message(input.text));
    }
  }
  Report_File(state, file);
  Report_Memory(state);
}

// What any reader has to do: count the line ends.
void Read_Lines(benchmark::State& state, const Hard_Input& input) {
  for (auto _ : state) benchmark::DoNotOptimize(std::count(input.text.begin(), input.text.end(), '\n'));
}

}  // namespace
}  // namespace tidyfold

int main(int argc, char** argv) try {
  using namespace tidyfold;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  g_mime_init();
  const Files files;
  using Case = std::pair<const char*, void (*)(benchmark::State&, const Files&)>;
  for (const auto& [name, run] : {Case{"parse/bare_gmime", Parse_Bare}, Case{"parse/messages", Read_Messages},
                                  Case{"import/store", Import_Into_Store}}) {
    benchmark::RegisterBenchmark(name, run, std::cref(files))
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime();
  }
  const std::vector<Hard_Input> inputs = Hard_Inputs();
  for (const Hard_Input& input : inputs) {
    const std::string name = std::string("hard/") + input.name;
    benchmark::RegisterBenchmark(name.c_str(), Read_Hard, std::cref(input), std::cref(files))
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime();
    benchmark::RegisterBenchmark((name + "/bare_lines").c_str(), Read_Lines, std::cref(input))
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime();
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "import_bench: %s\n", error.what());
  return 1;
}
