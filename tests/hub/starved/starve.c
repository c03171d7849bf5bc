// Preloaded into a program, lets one of its allocations fail: the one that whoever shares the file
// STARVE names. Where that is 0, none does. Counts all of them.
#include <errno.h>
#include <fcntl.h>
#include <stdatomic.h>
#include <stddef.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

struct Shared {
  atomic_long count;
  atomic_long fails_at;
};

static struct Shared* shared;

__attribute__((constructor)) static void Share(void) {
  const char* const file = getenv("STARVE");
  if (file == NULL) return;
  const int descriptor = open(file, O_RDWR | O_CLOEXEC);
  if (descriptor < 0) return;
  void* const memory =
      mmap(NULL, sizeof *shared, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  close(descriptor);
  if (memory != MAP_FAILED) shared = memory;
}

static int Fails(void) {
  if (shared == NULL) return 0;
  const long number = atomic_fetch_add(&shared->count, 1) + 1;
  if (number != atomic_load(&shared->fails_at)) return 0;
  errno = ENOMEM;
  return 1;
}

// What glibc itself calls them; dlsym would allocate.
extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* memory, size_t size);
extern void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) { return Fails() ? NULL : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return Fails() ? NULL : __libc_calloc(count, size); }
void* realloc(void* memory, size_t size) { return Fails() ? NULL : __libc_realloc(memory, size); }
void* aligned_alloc(size_t alignment, size_t size) {
  return Fails() ? NULL : __libc_memalign(alignment, size);
}
