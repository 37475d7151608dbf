#include "cli/plan_file.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <unordered_map>
#include <utility>

#include "base/dates.h"
#include "base/replace_file.h"
#include "cli/failure.h"
#include "cli/listing.h"

namespace tidyfold::cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr int version = 1;

constexpr const char* to_deleted_items = "deleted items";
constexpr const char* for_good = "for good";

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& what) {
  throw Failure(Exit_Status::Bad_Input, "\"" + file.string() + "\" " + what);
}

const char* Destination_Text(Destination destination) {
  return destination == Destination::For_Good ? for_good : to_deleted_items;
}

std::string Day(Date date) {
  return date == no_date ? std::string() : Format_Date(date);
}

Json Options_Json(const Run_Options& options) {
  const Item_Filter& filter = options.filter;
  Json types = Json::array();
  if (filter.by_type)
    for (const std::int32_t type : filter.types)
      if (type != 0) types.push_back(type);
  return {{"permanent", options.permanent},
          {"turbo", options.turbo},
          {"confirm_folders", options.confirm_folders},
          {"confirm_items", options.confirm_items},
          {"types", types},
          {"cutoff", filter.by_date ? Json(Format_Date(filter.cutoff)) : Json()},
          {"subject", filter.by_subject ? Json(filter.subject) : Json()},
          {"match_case", filter.match_case},
          {"match_word", filter.match_word},
          {"unread", filter.unread_too},
          {"flagged", filter.flagged_too}};
}

// Each item of a plan is named, so Turbo's deleting whatever is there becomes deleting each for good.
Run_Options Options_Of(const Json& json) {
  Run_Options options;
  const bool turbo = json.at("turbo").get<bool>();
  options.permanent = json.at("permanent").get<bool>() || turbo;
  options.confirm_folders = json.at("confirm_folders").get<bool>();
  options.confirm_items = json.at("confirm_items").get<bool>();
  Item_Filter& filter = options.filter;
  const auto types = json.at("types").get<std::vector<std::int32_t>>();
  filter.by_type = !types.empty();
  std::copy_n(types.begin(), std::min(types.size(), filter.types.size()), filter.types.begin());
  if (const Json& cutoff = json.at("cutoff"); !cutoff.is_null()) {
    const std::optional<Date> date = Parse_Date(cutoff.get<std::string>());
    filter.by_date = true;
    filter.cutoff = date.value();
  }
  if (const Json& subject = json.at("subject"); !subject.is_null()) {
    filter.by_subject = true;
    filter.subject = subject.get<std::string>();
  }
  filter.match_case = json.at("match_case").get<bool>();
  filter.match_word = json.at("match_word").get<bool>();
  filter.unread_too = json.at("unread").get<bool>();
  filter.flagged_too = json.at("flagged").get<bool>();
  return options;
}

Json Stores_Json(const Clean_Plan& plan, Session& session) {
  std::map<std::string, std::string> names;
  for (const Plan_Stop& stop : plan.stops) {
    MAPIFolder_Ptr top = session.Records()[stop.folder].Folder;
    while (const MAPIFolder_Ptr above = top->Parent()) top = above;
    names.emplace(top->StoreID(), top->Name());
  }
  Json stores = Json::array();
  for (const auto& [id, name] : names)
    stores.push_back({{"id", id}, {"name", name}, {"place", session.Place_Of_Store(id)}});
  return stores;
}

Json Numbers_Json(const Tally& tally) {
  return {{"count", tally.items},
          {"bytes", tally.bytes},
          {"oldest", Day(tally.oldest)},
          {"newest", Day(tally.newest)}};
}

// An object without its closing brace, for what is written one by one.
std::string Opened(const Json& object) {
  std::string text = To_Json(object);
  text.pop_back();
  return text;
}

Filed_Item Item_Of(const Json& json) {
  return {json.at("entry_id").get<std::string>(), json.at("class").get<std::int32_t>(),
          json.at("subject").get<std::string>(),  json.at("date").get<std::string>(),
          json.at("unread").get<bool>(),          json.at("flagged").get<bool>()};
}

// Takes the items out of the document while it is read: a tree of all of them would be many times the file.
class Plan_Reader {
 public:
  explicit Plan_Reader(std::filesystem::path file) : file_(std::move(file)) {}

  Filed_Plan Read(std::istream& stream) {
    const Json document = Json::parse(stream, [this](int depth, Json::parse_event_t event, Json& parsed) {
      return Keep(depth, event, parsed);
    });
    if (document.at("version").get<int>() < 1) Fail(file_, "is no plan of this program.");
    plan_.options = Options_Of(document.at("options"));
    for (const Json& store : document.at("stores"))
      plan_.stores.push_back({store.at("id").get<std::string>(), store.at("name").get<std::string>(),
                              store.at("place").get<std::string>()});
    // A plan that says it moves must not delete.
    const bool deletes = plan_.options.permanent;
    for (const std::string& destination : destinations_)
      if (destination != (deletes ? for_good : to_deleted_items))
        Fail(file_, "contradicts itself: its options and its destinations do not agree.");
    return std::move(plan_);
  }

 private:
  static constexpr int stop_depth = 2, item_depth = 4;

  bool Keep(int depth, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::key && depth == 1) key_ = parsed.get<std::string>();
    if (event == Json::parse_event_t::value && depth == 1 && key_ == "version" && parsed.get<int>() > version)
      Fail(file_, "is a plan of a newer version of this program. Use that version.");
    if (event != Json::parse_event_t::object_end || depth == 0 || key_ != "stops") return true;
    if (depth == item_depth) items_.push_back(Item_Of(parsed));
    if (depth == stop_depth) {
      destinations_.push_back(parsed.at("destination").get<std::string>());
      plan_.stops.push_back({parsed.at("store").get<std::string>(), parsed.at("folder").get<std::string>(),
                             parsed.at("entry_id").get<std::string>(), std::exchange(items_, {})});
    }
    return false;
  }

  std::filesystem::path file_;
  std::string key_;
  std::vector<Filed_Item> items_;
  std::vector<std::string> destinations_;
  Filed_Plan plan_;
};

}  // namespace

std::string Filed_Text(const std::string& text) {
  return Json::parse(To_Json(text)).get<std::string>();
}

void Check_New_File(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::exists(std::filesystem::symlink_status(file, error)))
    Fail(file, "is there already, and a plan never replaces a file. Give another name.");
}

void Write_Plan_File(const std::filesystem::path& file, const Clean_Plan& plan, Session& session) {
  std::unordered_map<int, const Store_Folder*> folders;
  for (const Store_Folder& folder : session.Folders()) folders.emplace(session.Node(folder), &folder);
  const Json totals = Numbers_Json(plan.total);
  Json head = {{"version", version},
               {"made", Format_Moment(System_Clock().Now())},
               {"options", Options_Json(plan.options)},
               {"options_in_words", plan.options.In_Words()},
               {"stores", Stores_Json(plan, session)}};
  head.update(totals);
  std::string text = Opened(head) + ",\n\"stops\":[";
  const char* next_stop = "\n";
  for (const Plan_Stop& stop : plan.stops) {
    const Store_Folder& folder = *folders.at(stop.folder);
    Json about = {{"store", folder.folder->StoreID()},
                  {"folder", folder.path},
                  {"entry_id", folder.folder->EntryID()},
                  {"destination", Destination_Text(stop.destination)}};
    about.update(Numbers_Json(stop.tally));
    text += std::exchange(next_stop, ",\n") + Opened(about) + ",\"items\":[";
    const FolderData& record = session.Records()[stop.folder];
    const char* next_item = "\n";
    bool all_named = stop.exact;
    for (const Planned_Item& planned : stop.items) {
      const ItemData& item = record.Cached(planned.item);
      all_named = all_named && !item.EntryID.empty();
      text += std::exchange(next_item, ",\n") + To_Json({{"entry_id", item.EntryID},
                                                         {"class", item.ItemClass},
                                                         {"subject", item.Subject},
                                                         {"date", Date_Text(item)},
                                                         {"unread", item.Unread},
                                                         {"flagged", item.Flagged}});
    }
    if (!all_named)
      throw Failure(Exit_Status::Bad_Input, "Not every item in \"" + folder.path +
                                                "\" is known, so no plan can name them. Run the command "
                                                "\"check\" on the store. No plan was saved.");
    text += "]}";
  }
  text += "\n]}\n";
  Check_New_File(file);
  if (const std::error_code error = Replace_File(file, text))
    Fail(file, "could not be written: " + error.message() + ". Give another place for the plan.");
}

Filed_Plan Read_Plan_File(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) Fail(file, "cannot be read. Give the file that --save-plan wrote.");
  const char* no_plan = "is no plan, or a damaged one. Make it anew with --dry-run --save-plan.";
  try {
    return Plan_Reader(file).Read(stream);
  } catch (const nlohmann::json::exception&) {
    Fail(file, no_plan);
  } catch (const std::bad_optional_access&) {
    Fail(file, no_plan);
  }
}

}  // namespace tidyfold::cli
