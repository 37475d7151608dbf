// The pieces of which messages are built, by GMime.
#pragma once

#include <cstdint>
#include <string>

#include "mail/gmime_ptr.h"

namespace tidyfold {

// Nothing is appended if both are empty.
void Append_Address(InternetAddressList* list, const std::string& name, const std::string& address);

// Seconds since 1970 in UTC.
void Set_Date(GMimeMessage* message, std::int64_t unix_seconds);

// UTF-8 text as "text/SUBTYPE".
Gmime_Ptr<GMimeObject> Text_Part(const std::string& text, const char* subtype);

// Without a type of two words: application/octet-stream. A part that is not to change a byte needs an
// encoding that keeps them (base64).
Gmime_Ptr<GMimeObject> File_Part(const std::string& bytes, std::string type);
// The name under which a part is attached; may be empty.
void Attach_As(const std::string& name, GMimeObject* part);

// Adds a part to "multipart/SUBTYPE"; what is none becomes its first part.
void Add_Part(Gmime_Ptr<GMimeObject>& whole, Gmime_Ptr<GMimeObject> part, const char* subtype);

// The bytes, with CR LF.
std::string Written(GMimeObject* object);

}  // namespace tidyfold
