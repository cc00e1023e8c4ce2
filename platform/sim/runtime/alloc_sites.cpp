#include "sim/runtime/alloc_sites.hpp"

#include <cxxabi.h>
#include <elf.h>
#include <execinfo.h>
#include <link.h>
#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sim {
namespace {

struct Symbol {
  std::uintptr_t start = 0, end = 0;
  std::string name;
};

int mainBias(dl_phdr_info* info, std::size_t, void* out) {
  *static_cast<std::uintptr_t*>(out) = info->dlpi_addr;
  return 1;  // the first is the executable itself
}

// The function symbols of the running executable, sorted by address.
class Symbols {
 public:
  Symbols() {
    std::uintptr_t bias = 0;
    dl_iterate_phdr(mainBias, &bias);
    std::ifstream in("/proc/self/exe", std::ios::binary);
    std::vector<char> image((std::istreambuf_iterator<char>(in)), {});
    if (image.size() < sizeof(Elf64_Ehdr)) return;
    const auto* eh = reinterpret_cast<const Elf64_Ehdr*>(image.data());
    const auto* sections = reinterpret_cast<const Elf64_Shdr*>(image.data() + eh->e_shoff);
    for (int i = 0; i < eh->e_shnum; ++i) {
      if (sections[i].sh_type != SHT_SYMTAB) continue;
      const Elf64_Shdr& names = sections[sections[i].sh_link];
      const auto* syms = reinterpret_cast<const Elf64_Sym*>(image.data() + sections[i].sh_offset);
      std::size_t count = sections[i].sh_size / sizeof(Elf64_Sym);
      for (std::size_t k = 0; k < count; ++k) {
        if (ELF64_ST_TYPE(syms[k].st_info) != STT_FUNC || !syms[k].st_size) continue;
        std::uintptr_t start = bias + syms[k].st_value;
        symbols_.push_back(
            {start, start + syms[k].st_size, image.data() + names.sh_offset + syms[k].st_name});
      }
    }
    std::sort(symbols_.begin(), symbols_.end(),
              [](const Symbol& a, const Symbol& b) { return a.start < b.start; });
  }

  std::string nameAt(void* address) {
    // A return address points after its call: look just before it.
    std::uintptr_t a = reinterpret_cast<std::uintptr_t>(address) - 1;
    auto it = std::upper_bound(symbols_.begin(), symbols_.end(), a,
                               [](std::uintptr_t x, const Symbol& s) { return x < s.start; });
    if (it == symbols_.begin() || a >= std::prev(it)->end) return "";
    const std::string& mangled = std::prev(it)->name;
    int status = 0;
    char* plain = abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status);
    std::string out = status == 0 && plain ? plain : mangled;
    std::free(plain);
    return out;
  }

 private:
  std::vector<Symbol> symbols_;
};

std::mutex symbolsMutex;

std::string nameAt(void* address) {
  static Symbols* symbols = new Symbols;  // read once, kept to the end of the program
  static std::unordered_map<void*, std::string> cache;
  std::lock_guard lock(symbolsMutex);
  auto [it, fresh] = cache.try_emplace(address);
  if (fresh) it->second = symbols->nameAt(address);
  return it->second;
}

// The layer a function's name places it in, by the namespace it is in; a
// std::function's invoker is placed by the lambda it runs.
enum class Layer { System, Other, Neither };

Layer layerOfQualified(std::string_view name) {
  // The facades (rt::, sys::, ui::) are passed over: whoever called them decides.
  static constexpr std::string_view kSystem[] = {
      "base::", "core::", "hiding::", "host::", "notify::", "panel::", "triggers::", "startup::"};
  static constexpr std::string_view kOther[] = {
      "hostapp::", "qbbench::", "qbsim::", "qbtest::", "testing::"};
  for (std::string_view ns : kSystem)
    if (name.starts_with(ns)) return Layer::System;
  for (std::string_view ns : kOther)
    if (name.starts_with(ns)) return Layer::Other;
  return Layer::Neither;
}

// A function template's name begins with its return type ("void
// hostapp::f<long>(…)"): the name proper follows the first blank outside
// brackets, unless the parameter list comes first.
std::string_view withoutReturnType(std::string_view name) {
  int depth = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    char c = name[i];
    if (c == '<') ++depth;
    if (c == '>') --depth;
    if (depth != 0) continue;
    if (c == '(') return name;
    // "operator bool()", "operator new(…)": a conversion's type, not a return type.
    if (c == ' ') return name.substr(0, i).ends_with("operator") ? name : name.substr(i + 1);
  }
  return name;
}

Layer layerOf(std::string_view name) {
  name = withoutReturnType(name);
  if (!name.starts_with("std::")) return layerOfQualified(name);
  for (std::size_t at = name.find("::{lambda"); at != std::string_view::npos;
       at = name.find("::{lambda", at + 1)) {
    // Back to where the lambda's qualified name begins, over its parameter lists.
    std::size_t begin = at;
    int depth = 0;
    while (begin > 0) {
      char c = name[begin - 1];
      if (c == ')') ++depth;
      if (c == '(') --depth;
      if (depth == 0 && (c == '<' || c == ',' || c == ' ')) break;
      --begin;
    }
    if (Layer l = layerOfQualified(name.substr(begin)); l != Layer::Neither) return l;
  }
  return Layer::Neither;
}

// The layer of the function a return address is in, remembered by address.
Layer layerAt(void* frame) {
  static std::mutex mutex;
  static std::unordered_map<void*, Layer> known;
  {
    std::lock_guard lock(mutex);
    if (auto it = known.find(frame); it != known.end()) return it->second;
  }
  Layer layer = layerOf(nameAt(frame));
  std::lock_guard lock(mutex);
  known.emplace(frame, layer);
  return layer;
}

const void* decidingFrame(const AllocSite& site, Layer& layer) {
  for (void* frame : site) {
    if (!frame) break;
    layer = layerAt(frame);
    if (layer != Layer::Neither) return frame;
  }
  layer = Layer::Neither;
  return nullptr;
}

struct Range {
  std::uintptr_t begin = 0, end = 0;
  bool holds(std::uintptr_t a) const { return a >= begin && a < end; }
};

int mainText(dl_phdr_info* info, std::size_t, void* out) {
  auto* text = static_cast<Range*>(out);
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)& ph = info->dlpi_phdr[i];
    if (ph.p_type == PT_LOAD && (ph.p_flags & PF_X))
      *text = {info->dlpi_addr + ph.p_vaddr, info->dlpi_addr + ph.p_vaddr + ph.p_memsz};
  }
  return 1;
}

Range thisThreadsStack() {
  Range stack;
  pthread_attr_t attr;
  if (pthread_getattr_np(pthread_self(), &attr) != 0) return stack;
  void* low = nullptr;
  std::size_t size = 0;
  if (pthread_attr_getstack(&attr, &low, &size) == 0)
    stack = {reinterpret_cast<std::uintptr_t>(low), reinterpret_cast<std::uintptr_t>(low) + size};
  pthread_attr_destroy(&attr);
  return stack;
}

enum class Walk { Filled, LeftExecutable, Broken };

// The executable is built keeping frame pointers, as arm64 code always is,
// so its own frames chain through them: a walk that costs a few loads a
// frame where the unwinder's costs a table search. The walk stops at the
// first frame outside the executable (a shared library's, which may keep no
// frame pointer), and at anything that is not a frame of this thread's stack.
Walk walkFramePointers(AllocSite& site, void* from, std::size_t& filled) {
  static const Range text = [] {
    Range r;
    dl_iterate_phdr(mainText, &r);
    return r;
  }();
  thread_local const Range stack = thisThreadsStack();
  auto* fp = static_cast<std::uintptr_t*>(from);
  for (filled = 0; filled < site.size(); ++filled) {
    auto at = reinterpret_cast<std::uintptr_t>(fp);
    if (at % alignof(std::uintptr_t) != 0 || !stack.holds(at) || !stack.holds(at + 15))
      return Walk::Broken;
    std::uintptr_t ret = fp[1];
    if (!text.holds(ret)) return Walk::LeftExecutable;
    site[filled] = reinterpret_cast<void*>(ret);
    auto* next = reinterpret_cast<std::uintptr_t*>(fp[0]);
    if (next <= fp) return filled + 1 == site.size() ? Walk::Filled : Walk::Broken;
    fp = next;
  }
  return Walk::Filled;
}

}  // namespace

// Not inlined, so that its own frame is the one the walk begins at.
[[gnu::noinline]] void captureAllocSite(AllocSite& site) {
  site.fill(nullptr);
  std::size_t filled = 0;
  switch (walkFramePointers(site, __builtin_frame_address(0), filled)) {
    case Walk::Filled:
      return;
    case Walk::LeftExecutable:
      // Frames past a shared library's are the unwinder's to read; they
      // matter only when no frame before it decides who made the object.
      for (std::size_t i = 0; i < filled; ++i)
        if (layerAt(site[i]) != Layer::Neither) return;
      break;
    case Walk::Broken:
      break;
  }
  site.fill(nullptr);
  void* frames[site.size() + 1];
  int n = backtrace(frames, int(site.size() + 1));
  // frames[0] is this function.
  for (int i = 1; i < n; ++i) site[std::size_t(i - 1)] = frames[i];
}

Maker makerOf(const AllocSite& site) {
  Layer layer = Layer::Neither;
  decidingFrame(site, layer);
  return layer == Layer::System ? Maker::System : Maker::Other;
}

std::string madeIn(const AllocSite& site) {
  Layer layer = Layer::Neither;
  const void* frame = decidingFrame(site, layer);
  return frame ? nameAt(const_cast<void*>(frame)) : "";
}

}  // namespace sim
