#include "outlook/folder_roles.h"

#include "errors/automation_error.h"

namespace tidyfold {

namespace {

struct Role_Names {
  std::int32_t role;
  std::string_view names;  // each between two bars
};

constexpr Role_Names role_names[] = {
    {default_folder_deleted_items,
     "|Deleted Items|Gelöschte Elemente|Gelöschte Objekte|Éléments supprimés|Elementos eliminados|"
     "Posta eliminata|Itens Excluídos|Itens Eliminados|Verwijderde items|Borttagna objekt|Slettet post|"
     "Slettede elementer|Poistetut|Elementy usunięte|Odstraněná pošta|Odstránené položky|Törölt elemek|"
     "Elemente șterse|Elemente şterse|Изтрити|Διαγραμμένα|Silinmiş Öğeler|Удаленные|Удалённые|Видалені|"
     "削除済みアイテム|지운 편지함|已删除邮件|刪除的郵件|פריטים שנמחקו|العناصر المحذوفة|รายการที่ถูกลบ|"
     "Izbrisane stavke|Obrisane stavke|Izbrisano|Kustutatud üksused|Izdzēstās vienības|Panaikinti elementai|"
     "Elements suprimits|Mục Đã Xóa|"},
    {default_folder_inbox,
     "|Inbox|Posteingang|Boîte de réception|Bandeja de entrada|Posta in arrivo|Caixa de Entrada|"
     "A Receber|Postvak IN|Inkorgen|Indbakke|Innboks|Saapuneet|Skrzynka odbiorcza|Doručená pošta|"
     "Beérkezett üzenetek|Gelen Kutusu|Входящие|受信トレイ|받은 편지함|收件箱|收件匣|"},
    {default_folder_outbox,
     "|Outbox|Postausgang|Boîte d'envoi|Bandeja de salida|Posta in uscita|Caixa de Saída|Postvak UIT|"
     "Utkorgen|Udbakke|Utboks|Lähtevät|Skrzynka nadawcza|Pošta k odeslání|Postázandó üzenetek|Giden Kutusu|"
     "Исходящие|送信トレイ|보낼 편지함|发件箱|寄件匣|"},
    {default_folder_sent,
     "|Sent Items|Gesendete Elemente|Éléments envoyés|Elementos enviados|Posta inviata|Itens Enviados|"
     "Verzonden items|Skickat|Sendt post|Sendte elementer|Lähetetyt|Elementy wysłane|Odeslaná pošta|"
     "Elküldött elemek|Gönderilmiş Öğeler|Отправленные|送信済みアイテム|보낸 편지함|已发送邮件|寄件備份|"},
    {default_folder_drafts,
     "|Drafts|Entwürfe|Brouillons|Borradores|Bozze|Rascunhos|Concepten|Utkast|Kladder|Luonnokset|"
     "Wersje robocze|Kopie robocze|Koncepty|Piszkozatok|Taslaklar|Черновики|下書き|임시 보관함|草稿|"},
    {default_folder_junk,
     "|Junk Email|Junk E-mail|Junk-E-Mail|Courrier indésirable|Correo no deseado|Posta indesiderata|"
     "Lixo Eletrônico|Ongewenste e-mail|Skräppost|Uønsket mail|Søppelpost|Roskaposti|Wiadomości-śmieci|"
     "Nevyžádaná pošta|Levélszemét|Önemsiz E-posta|Нежелательная почта|迷惑メール|정크 메일|垃圾邮件|"
     "垃圾郵件|"},
    {9,
     "|Calendar|Kalender|Calendrier|Calendario|Calendário|Agenda|Kalenteri|Kalendarz|Kalendář|Naptár|Takvim|"
     "Календарь|予定表|일정|日历|行事曆|"},
    {10,
     "|Contacts|Kontakte|Contactos|Contatti|Contatos|Contactpersonen|Kontakter|Kontaktpersoner|Yhteystiedot|"
     "Kontakty|Névjegyek|Kişiler|Контакты|連絡先|연락처|联系人|連絡人|"},
    {11,
     "|Journal|Diario|Diário|Logboek|Loggboken|Kladde|Päiväkirja|Dziennik|Deník|Napló|Günlük|Дневник|履歴|"},
    {12,
     "|Notes|Notizen|Notas|Note|Anotações|Notities|Anteckningar|Noter|Notater|Muistilaput|Notatki|Poznámky|"
     "Feljegyzések|Notlar|Заметки|メモ|메모|便笺|記事|"},
    {13,
     "|Tasks|Aufgaben|Tâches|Tareas|Attività|Tarefas|Taken|Uppgifter|Opgaver|Oppgaver|Tehtävät|Zadania|Úkoly|"
     "Feladatok|Görevler|Задачи|タスク|仕事|작업|任务|工作|"}};

// Empty where the store, or the session, cannot tell. `known` says whether it can.
template <class Ask>
MAPIFolder_Ptr Told(bool& known, Ask&& ask) {
  known = true;
  try {
    return ask();
  } catch (const Automation_Error& error) {
    if (error.Number() == automation_error::unavailable) throw;
    known = error.Number() == automation_error::not_found;
    return nullptr;
  }
}

}  // namespace

std::int32_t Role_Of_Name(std::string_view name) {
  if (name.empty() || name.find('|') != std::string_view::npos) return 0;
  std::string wanted = "|";
  wanted.append(name).append("|");
  for (const auto& [role, names] : role_names)
    if (names.find(wanted) != std::string_view::npos) return role;
  return 0;
}

MAPIFolder_Ptr Find_Folder_With_Role(NameSpace& name_space, MAPIFolder& top, std::int32_t role) {
  bool known = false;
  MAPIFolder_Ptr folder = Told(known, [&] { return top.Store()->GetDefaultFolder(role); });
  if (known) return folder;
  folder = Told(known, [&] { return name_space.GetDefaultFolder(role); });
  if (folder != nullptr && folder->StoreID() == top.StoreID()) return folder;
  const Folders_Ptr children = top.Folders();
  const std::int32_t count = children->Count();
  for (std::int32_t i = 1; i <= count; ++i) {
    MAPIFolder_Ptr child = children->Item(i);
    if (Role_Of_Name(child->Name()) == role) return child;
  }
  return nullptr;
}

}  // namespace tidyfold
