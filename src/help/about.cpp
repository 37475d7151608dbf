#include "help/about.h"

#include <optional>

#include "base/text.h"
#include "help/file_names.h"

namespace tidyfold {

namespace {

constexpr const char* licences_file = "licences.txt";

std::string Licences(const std::string& folder) {
  const std::string path = BuildPath(folder, licences_file);
  const std::optional<std::string> text = File_Text(path);
  if (!text)
    return "The licences of the libraries that Tidyfold uses belong in " + path + ", which is missing.";
  return Valid_Utf8(*text);
}

}  // namespace

About::About(Form& form, About_Controls& controls, const Program_Info& program)
    : form_(form), controls_(controls), program_(program) {
  controls_.Label3.Click = [this] { Label3_Click(); };
  controls_.cmdHomePage.Click = [this] { cmdHomePage_Click(); };
  controls_.ok_button.Click = [this] { ok_button_Click(); };
  form_.Close = [this] { form_.Unload(); };
}

void About::Label3_Click() {
  Raise(Show_Home_Page);
}

void About::cmdHomePage_Click() {
  Raise(Show_Home_Page);
}

void About::ok_button_Click() {
  form_.Unload();
}

void About::Show() {
  if (!form_.Loaded()) Form_Load();
  form_.Show();
}

void About::Form_Load() {
  controls_.txtLegalNotice.Set_Text(program_.Legal_Notice);
  controls_.txtVersionNumber.Set_Text(std::to_string(program_.Major) + "." + std::to_string(program_.Minor) +
                                      "." + std::to_string(program_.Revision));
  controls_.lblHeading.Set_Caption(program_.Title);
  form_.Set_Caption("About " + program_.Title);
  controls_.txtLicences.Set_Text(Licences(program_.Path));
  form_.Load();
}

}  // namespace tidyfold
