// The log of runs.
#pragma once

#include <wx/button.h>
#include <wx/frame.h>
#include <wx/stattext.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "controls/main_window.h"
#include "desktop/common/background_task.h"
#include "desktop/common/text_table.h"
#include "runs/run_log.h"

namespace tidyfold {

// Lists the runs and, below them, the items of the chosen run. Reads the log in the background whenever the
// window is activated. Esc closes it.
class Runs_Window : public wxFrame {
 public:
  // `window` must outlive this one.
  Runs_Window(wxWindow* parent, MainWindow& window, std::filesystem::path log);

 private:
  struct Item_Row {
    std::string folder, subject, date, done, result;
  };

  void Build();
  wxWindow* New_Lower_Pane(wxWindow* parent);
  void Read_Runs();
  void Show_Runs(std::vector<Logged_Run> runs);
  void Choose(std::int64_t run);
  // Between the two tables.
  void Say(const std::string& text);
  void Read_Items(const Logged_Run& run);
  void Enable_Buttons();
  void Save_As_Csv();
  void Take_Back();

  wxString Run_Cell(const Logged_Run& run, long column) const;
  wxString Item_Cell(const Item_Row& item, long column) const;
  const Logged_Run* Chosen() const;

  MainWindow& window_;
  const std::filesystem::path log_;
  std::vector<Logged_Run> runs_;
  std::vector<Item_Row> items_;
  std::int64_t shown_run_ = 0;
  bool saving_ = false;

  Text_Table* run_table_ = nullptr;
  Text_Table* item_table_ = nullptr;
  wxStaticText* about_run_ = nullptr;
  wxButton* save_ = nullptr;
  wxButton* take_back_ = nullptr;

  Background_Task runs_task_{*this}, items_task_{*this}, save_task_{*this};
};

}  // namespace tidyfold
