#include "Memory/UnusedMemory.h"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace tobrin {

namespace {

// The program itself has an empty name.
bool playsSound(std::string_view library) {
  constexpr std::array<std::string_view, 6> onTheRoad{"libc.so",  "libm.so", "libstdc++",
                                                      "pipewire", "spa-0.2", "asound"};
  return library.empty() || std::ranges::any_of(onTheRoad, [&](std::string_view name) {
           return library.find(name) != std::string_view::npos;
         });
}

// Pages that nobody can have changed since they were read from the file. Those that the loader
// wrote to before it protected them lie in segments that are still marked writable here.
void letGo(ElfW(Addr) base, const ElfW(Phdr) & segment) {
  if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) return;
  const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const uintptr_t first = (base + segment.p_vaddr + page - 1) / page * page;
  const uintptr_t end = (base + segment.p_vaddr + segment.p_filesz) / page * page;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader tells addresses as numbers.
  if (end > first) (void)::madvise(reinterpret_cast<void*>(first), end - first, MADV_DONTNEED);
}

int letGoOfLibrary(dl_phdr_info* library, std::size_t /*size*/, void* /*context*/) {
  if (playsSound(library->dlpi_name)) return 0;
  for (int i = 0; i < library->dlpi_phnum; ++i)
    letGo(library->dlpi_addr, library->dlpi_phdr[i]);
  return 0;
}

}  // namespace

void giveBackUnusedMemory() {
  malloc_trim(0);
  dl_iterate_phdr(letGoOfLibrary, nullptr);
}

}  // namespace tobrin
