/* Loads the library at run time, and so starts without it as well. lumvane.h is only used for the types.
 *
 *   cc -std=c11 runtime.c -o runtime -ldl               then: runtime [liblumvane.so.0]
 *   x86_64-w64-mingw32-gcc runtime.c -o runtime.exe     then: runtime.exe [lumvane.dll]
 */
#include <lumvane.h>
#include <stdio.h>
#ifdef _WIN32
#include <windows.h>
#define LIBRARY "lumvane.dll"
#define OPEN(name) LoadLibraryA(name)
#define LOOK_UP(library, name) GetProcAddress(library, name)
#else
#include <dlfcn.h>
#define LIBRARY "liblumvane.so.0" /* a later interface has another number */
#define OPEN(name) dlopen(name, RTLD_NOW | RTLD_LOCAL)
#define LOOK_UP(library, name) dlsym(library, name)
#endif

/* clang-format off */
#define FUNCTIONS(DO) \
  DO(Create3DLutColorAdjustEffect) DO(Lut3DColorAdjustEffectProcess) DO(Destory3DLutColorAdjustEffect) \
  DO(CreateNLEPureCClarity) DO(NLEPureCClarityProcess) DO(DestoryNLEPureCClarity) \
  DO(WhiteBalanceFun) \
  DO(CreateVideoAdjustColor) DO(VideoAdjustColorProcess) DO(DestroyVideoAdjustColor)
/* clang-format on */

/* A pointer to each function, by the function's name. */
static struct {
#define POINTER(name) __typeof__(&name) name;
  FUNCTIONS(POINTER)
} lumvane;

/* Whether the library is there, with all its functions. */
static int load(const char* file) {
  void* const library = OPEN(file);
  if (library == NULL) return 0;
#define FIND(name) \
  if ((lumvane.name = (__typeof__(&name))(void*)LOOK_UP(library, #name)) == NULL) return 0;
  FUNCTIONS(FIND)
  return 1;
}

int main(int argc, char** argv) {
  uint8_t pixel[4] = {100, 100, 100, 255};
  if (!load(argc > 1 ? argv[1] : LIBRARY)) {
    fprintf(stderr, "Lumvane is not installed: its effects are not offered\n");
    return 1;
  }
  lumvane.WhiteBalanceFun(pixel, pixel, 0, 0, 0, 0.2f, 0, 1, 1);
  printf("a warm grey: blue %d, green %d, red %d\n", pixel[0], pixel[1], pixel[2]);
  return 0;
}
