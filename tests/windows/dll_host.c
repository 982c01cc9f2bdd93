/* A Windows host that loads the DLL by name and links nothing else: dll_host LUMVANE.DLL FOLDER
 * FOLDER must be writable. Names created in it have letters that no single code page has, and a surrogate pair. */
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <windows.h>

#include "lumvane.h" /* for the types only */

static HMODULE library;
/* The functions of the DLL, by their names in lumvane.h with the prefix F. */
#define LUMVANE_EXPORT(name) static __typeof__(&name) F##name;
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT

static int errors;
static void expect(bool holds, const char* what) {
  if (holds) return;
  printf("failed: %s\n", what);
  ++errors;
}

static void find(void* function, const char* name) {
  FARPROC const found = GetProcAddress(library, name);
  if (found == NULL) printf("missing export: %s\n", name), ++errors;
  memcpy(function, &found, sizeof found);
}

static bool load(const wchar_t* file) {
  library = LoadLibraryW(file);
  if (library == NULL) return false;
#define LUMVANE_EXPORT(name) find(&F##name, #name);
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT
  return true;
}

static void write_negative(const wchar_t* name) {
  FILE* const file = _wfopen(name, L"wb");
  if (file == NULL) return; /* reading it fails then */
  fputs("LUT_3D_SIZE 2\r\n1 1 1\r\n0 1 1\r\n1 0 1\r\n0 0 1\r\n1 1 0\r\n0 1 0\r\n1 0 0\r\n0 0 0\r\n", file);
  fclose(file);
}

/* Returns whether a LUT of this name loads and inverts colours. */
static bool is_negative(const wchar_t* name) {
  const uint8_t src[4] = {0, 0, 255, 255};
  uint8_t dst[4] = {9, 9, 9, 9};
  void* const effect = FCreate3DLutColorAdjustEffect((const char16_t*)name, 1, 1);
  if (effect == NULL) return false;
  FLut3DColorAdjustEffectProcess(effect, dst, 1, 1, 0, src, 1, 1, 0, 100);
  FDestory3DLutColorAdjustEffect(effect);
  return dst[0] == 255 && dst[1] == 255 && dst[2] == 0 && dst[3] == 255;
}

static void try_paths(const wchar_t* folder) {
  wchar_t path[MAX_PATH], swapped[MAX_PATH];
  size_t i;
  swprintf(path, MAX_PATH, L"%ls\\n\u00e9gatif \u041d\u0415\u0422 \U0001d11e.Cube", folder);
  write_negative(path);
  expect(path[1] == L':' && is_negative(path), "a drive letter, backslashes, a surrogate pair");
  for (i = 0; i <= wcslen(path); ++i) swapped[i] = path[i] == L'\\' ? L'/' : path[i];
  expect(is_negative(swapped), "slashes");
  swprintf(swapped, MAX_PATH, L"\\\\?\\%ls", path);
  expect(is_negative(swapped), "a path of the \\\\?\\ form");
  expect(SetCurrentDirectoryW(folder) && is_negative(wcsrchr(path, L'\\') + 1), "a file name without a folder");
  path[wcslen(path) - 6] = 0xdd1f; /* another low surrogate */
  expect(!is_negative(path), "a name that differs in the second half of a surrogate pair is another name");
  expect(FCreate3DLutColorAdjustEffect(u"C:\\nothing\\here.cube", 1, 1) == NULL, "a missing file gives null");
  expect(FCreate3DLutColorAdjustEffect((const char16_t*)folder, 1, 1) == NULL, "a folder gives null");
}

static void try_hdr(const wchar_t* folder) {
  wchar_t path[MAX_PATH];
  uint8_t y[4], v, u;
  void* effect;
  int pq;
  swprintf(path, MAX_PATH, L"%ls\\HDR_HLG.cube", folder);
  write_negative(path);
  swprintf(path, MAX_PATH, L"%ls\\HDR_PQ.cube", folder);
  write_negative(path);
  for (pq = 0; pq < 2; ++pq) {
    memset(y, 0, sizeof y);
    v = u = 128;
    effect = FCreateVideoAdjustColor((const char16_t*)folder, 0, 0, pq, 2, 2);
    expect(effect != NULL && FVideoAdjustColorProcess(effect, y, &v, &u, 2, 1, 1, 0, 0, y, &v, &u), "HDR frames");
    expect(y[0] == 255 && y[3] == 255, "the HDR LUTs are found by their names");
    FDestroyVideoAdjustColor(effect);
  }
}

/* Renders a frame that is large enough for OpenCV's threads. */
static DWORD WINAPI render(void* unused) {
  static uint8_t frame[640 * 480 * 4];
  void* const effect = FCreateNLEPureCClarity(640, 480, 0, 20, 50);
  const int32_t done = FNLEPureCClarityProcess(effect, frame, 640, 480, 0, frame, 640, 480, 0);
  FDestoryNLEPureCClarity(effect);
  return done != 1 || unused != NULL;
}

static void render_in_a_thread(void) {
  HANDLE const thread = CreateThread(NULL, 256 << 10, render, NULL, 0, NULL);
  DWORD result = 1;
  WaitForSingleObject(thread, INFINITE);
  expect(GetExitCodeThread(thread, &result) && result == 0, "frames in a thread with a small stack");
  CloseHandle(thread);
}

int wmain(int argc, wchar_t** argv) {
  wchar_t given[MAX_PATH], folder[MAX_PATH];
  int round;
  if (argc != 3 || GetFullPathNameW(argv[2], MAX_PATH, given, NULL) == 0) return 2;
  swprintf(folder, MAX_PATH, L"%ls\\lumvane \u00e4\u0416\u6f22\U0001f3a8", given);
  CreateDirectoryW(folder, NULL);

  /* White balance creates no effect, so the DLL can be unloaded. */
  for (round = 0; round < 20; ++round) {
    uint8_t pixel[4] = {100, 100, 100, 255};
    if (!load(argv[1])) return printf("the DLL cannot be loaded: error %lu\n", GetLastError()), 1;
    expect(FWhiteBalanceFun(pixel, pixel, 0, 0, 0, 1.0f, 0, 1, 1) && pixel[0] < pixel[2], "white balance");
    expect(FindResourceW(library, MAKEINTRESOURCEW(VS_VERSION_INFO), (LPCWSTR)RT_VERSION) != NULL, "a version");
    FreeLibrary(library);
    expect(GetModuleHandleW(L"lumvane.dll") == NULL, "the DLL is unloaded if no effect was created");
  }
  /* The waiting threads of the pool keep it loaded. */
  for (round = 0; round < 3; ++round) {
    if (!load(argv[1])) return 1;
    try_paths(folder);
    try_hdr(folder);
    render_in_a_thread();
    FreeLibrary(library);
    Sleep(50);
  }
  expect(GetModuleHandleW(L"lumvane.dll") != NULL, "the DLL stays loaded for its threads");
  if (errors == 0) puts("passed");
  return errors != 0;
}
