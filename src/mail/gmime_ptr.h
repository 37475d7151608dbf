// Starting GMime, and owning pointers to its objects.
#pragma once

#include <gmime/gmime.h>

#include <memory>
#include <mutex>

namespace tidyfold {

struct Unref_Object {
  void operator()(void* object) const { g_object_unref(object); }
};
template <class Object>
using Gmime_Ptr = std::unique_ptr<Object, Unref_Object>;

struct Free_Memory {
  void operator()(void* memory) const { g_free(memory); }
};
using Gmime_Text = std::unique_ptr<char, Free_Memory>;

// Builds the library's tables, once; nothing of it works before.
inline void Start_Gmime() {
  static std::once_flag once;
  std::call_once(once, g_mime_init);
}

}  // namespace tidyfold
