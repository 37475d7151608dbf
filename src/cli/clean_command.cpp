#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/choice.h"
#include "cli/commands.h"
#include "cli/killed_runs.h"
#include "cli/listing.h"
#include "cli/plan_file.h"
#include "cli/plan_matching.h"

namespace tidyfold::cli {

namespace {

class Clean_Command {
 public:
  Clean_Command(const Arguments& arguments, Terminal& terminal)
      : arguments_(arguments),
        terminal_(terminal),
        json_(arguments.form == Form::Json),
        answering_(Answering_For(arguments, terminal)),
        session_(arguments, arguments.dry_run ? Store_Mode::Read_Only : Store_Mode::Read_Write, terminal,
                 answering_, json_) {}

  Exit_Status Run() {
    if (arguments_.save_plan) Check_New_File(*arguments_.save_plan);
    const std::vector<Store_Folder> folders = session_.Find(arguments_.folders);
    std::optional<Filed_Plan> filed;
    if (arguments_.plan) {
      filed = Read_Plan_File(*arguments_.plan);
      Check_Stores(*filed, session_);
    }
    if (!arguments_.dry_run) Tell_Of_Killed_Runs();
    session_.Load();
    if (arguments_.dry_run && !json_) terminal_.Write("Dry run: nothing is changed.\n");
    try {
      if (!filed) Choose(folders);
      Clean_Plan plan = filed ? Match_Plan(*filed, session_) : session_.Program().planner.Plan_Run();
      if (arguments_.backup)
        plan.options.copy_directory =
            std::filesystem::absolute(*arguments_.backup).lexically_normal().string();
      Check_Most(plan);
      return arguments_.dry_run ? Rehearse(plan) : Clean(std::move(plan));
    } catch (const Failure& failure) {
      // A refusal has a document; bad usage has none.
      if (failure.Status() != Exit_Status::Refused) throw;
      terminal_.Write_Error(failure.what());
      Write_Document(0, false, nullptr);
      return failure.Status();
    }
  }

 private:
  static Answering Answering_For(const Arguments& arguments, const Terminal& terminal) {
    if (arguments.dry_run) return Answering::Rehearse;
    if (arguments.yes) return Answering::Agree;
    return terminal.Can_Ask() ? Answering::Ask : Answering::Decline;
  }

  void Choose(const std::vector<Store_Folder>& folders) {
    Choice choice(session_);
    choice.Set(arguments_.options, arguments_.filters);
    if (arguments_.sub_folders) choice.Mark_Sub_Folders();
    for (const Store_Folder& folder : folders) choice.Mark(folder);
    if (arguments_.sub_folders) Tell_Left_Out();
  }

  // The uppermost protected folders below marked ones.
  void Tell_Left_Out() {
    const TreeView& tree = session_.Window().trvFolders;
    const Protected_Folders& protection = session_.Program().protection;
    for (const Store_Folder& folder : session_.Folders()) {
      const int node = session_.Node(folder);
      if (!protection.Is_Protected(node) || protection.Is_Protected(tree.Parent(node))) continue;
      int above = tree.Parent(node);
      while (above != 0 && !tree.Checked(above)) above = tree.Parent(above);
      if (above != 0)
        terminal_.Write_Error("The folder \"" + folder.path +
                              "\" is protected and is left out, with all that lies below it.");
    }
  }

  // A log that cannot be read stops nothing here: the run itself asks what to do without one.
  void Tell_Of_Killed_Runs() {
    try {
      Tell_Killed_Runs(session_.Log(), terminal_);
    } catch (const Run_Log_Error&) {
    }
  }

  void Check_Most(const Clean_Plan& plan) const {
    const bool takes_folders = plan.options.delete_folders;
    const std::int64_t count = takes_folders ? plan.folders_to_go : plan.total.items;
    if (!arguments_.most || count <= *arguments_.most) return;
    throw Failure(Exit_Status::Refused, "The run would take " +
                                            Counted(count, takes_folders ? "folder" : "item") +
                                            ", and --max allows " + std::to_string(*arguments_.most) +
                                            ". Nothing was changed. Choose less, or give a higher --max.");
  }

  // A check says itself why; `otherwise` is for a question that was not answered Yes.
  [[noreturn]] void Refuse(const char* otherwise) {
    const auto& shown = session_.Messages().Shown();
    const bool by_check = !shown.empty() && shown.back().icon == Icon::Critical;
    const std::string why = by_check ? "The run was refused: " + shown.back().text : otherwise;
    throw Failure(Exit_Status::Refused,
                  why + " Nothing was changed." + (by_check ? " Choose other folders or options." : ""));
  }

  Exit_Status Rehearse(const Clean_Plan& plan) {
    if (!session_.Program().checks.Check_Screen(plan)) Refuse("The run would not begin.");
    if (arguments_.save_plan) Write_Plan_File(*arguments_.save_plan, plan, session_);
    const bool takes_folders = plan.options.delete_folders;
    if (json_) {
      Write_Document(takes_folders ? plan.folders_to_go : plan.total.items, false, &plan);
      return Exit_Status::Done;
    }
    const std::int64_t items = Item_Listing(session_, terminal_, Form::Text).Write(plan);
    terminal_.Write((takes_folders ? Counted(plan.folders_to_go, "folder") + " with " : "") +
                    Counted(items, "item") + " would be taken.\n");
    if (arguments_.save_plan)
      terminal_.Write("The plan was saved to \"" + arguments_.save_plan->string() + "\".\n");
    return Exit_Status::Done;
  }

  Exit_Status Clean(Clean_Plan plan) {
    const Run_State& run = session_.Program().run;
    for (const Kept_Item& kept : plan.kept)
      terminal_.Write_Error("\"" + kept.shown.Subject + "\" (" + session_.Records()[kept.folder].FolderName +
                            ") is kept, because it has changed since it was planned: " + kept.reason);
    session_.Program().cleaning.Run_Plan(std::move(plan));
    if (!run.Began)
      Refuse(answering_ == Answering::Decline
                 ? "There is no terminal to confirm the run on. Give --yes to confirm everything beforehand."
                 : "Not confirmed.");
    bool trouble = run.NotAllDeleted || !run.Changed.empty();
    try {
      session_.Commit();
    } catch (const std::exception& error) {
      terminal_.Write_Error(error.what());
      trouble = true;
    }
    Write_Document(run.ProcessedCount, trouble, nullptr);
    if (run.Cancelled) {
      terminal_.Write_Error("Cancelled on the way; what had been done by then is done.");
      return Exit_Status::Cancelled;
    }
    const auto& shown = session_.Messages().Shown();
    trouble = trouble || std::any_of(shown.begin(), shown.end(),
                                     [](const auto& message) { return message.icon == Icon::Critical; });
    if (trouble) return Exit_Status::Not_All_Done;
    const bool declined = std::any_of(shown.begin(), shown.end(),
                                      [](const auto& message) { return message.answer == Answer::No; });
    return run.ProcessedCount == 0 && declined ? Exit_Status::Refused : Exit_Status::Done;
  }

  // The document of --json. A dry run has a list of items, written one by one; without a plan it is empty.
  void Write_Document(std::int64_t processed, bool not_all_deleted, const Clean_Plan* plan) {
    if (!json_) return;
    std::string document = To_Json({{"messages", Messages_Json(session_.Messages())},
                                    {"processed", processed},
                                    {"not_all_deleted", not_all_deleted},
                                    {"dry_run", arguments_.dry_run}});
    if (arguments_.dry_run) {
      document.back() = ',';
      terminal_.Write(document + "\"items\":");
      if (plan != nullptr) Item_Listing(session_, terminal_, Form::Json).Write(*plan);
      document = plan != nullptr ? "}" : "[]}";
    }
    terminal_.Write(document + "\n");
  }

  const Arguments& arguments_;
  Terminal& terminal_;
  bool json_;
  Answering answering_;
  Session session_;
};

}  // namespace

Exit_Status Clean(const Arguments& arguments, Terminal& terminal) {
  return Clean_Command(arguments, terminal).Run();
}

}  // namespace tidyfold::cli
