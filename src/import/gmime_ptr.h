// Owning pointers to GMime objects.
#pragma once

#include <gmime/gmime.h>

#include <memory>

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

}  // namespace tidyfold
