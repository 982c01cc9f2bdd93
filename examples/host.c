/* A host in one file: draws a picture, takes it through every effect and writes the results. See docs/embedding.md.
 *
 *   host LOOK.cube [FOLDER]      FOLDER holds HDR_HLG.cube and HDR_PQ.cube
 */
#include <locale.h>
#include <lumvane.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kWidth = 600, kHeight = 400, kPacked = 4 * kWidth, kPadded = kPacked + 32 }; /* bytes per row: BGRA */

static void check(int ok, const char* problem) {
  if (ok) return;
  fprintf(stderr, "%s\n", problem);
  exit(1);
}

/* A path from the command line, in the encoding of the locale. Null, which no create function accepts, if it cannot be
 * converted. */
static const char16_t* utf16(const char* text) {
  static char16_t path[4096];
  mbstate_t state = {0};
  size_t used;
  for (int i = 0; (used = mbrtoc16(&path[i], text, strlen(text) + 1, &state)) != 0; ++i) {
    if (used == (size_t)-1 || used == (size_t)-2 || i == 4094) return NULL;
    if (used != (size_t)-3) text += used; /* -3: the second unit of a surrogate pair */
  }
  return path;
}

static void write_ppm(const char* name, const uint8_t* pixels) {
  FILE* const file = fopen(name, "wb");
  check(file != NULL, "cannot write to this folder");
  fprintf(file, "P6\n%d %d\n255\n", kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (const uint8_t *p = pixels + y * kPadded, *end = p + kPacked; p < end; p += 4) {
      fwrite((const uint8_t[]){p[2], p[1], p[0]}, 3, 1, file);
    }
  }
  check(fclose(file) == 0, "cannot write to this folder");
}

int main(int argc, char** argv) {
  static uint8_t src[kPacked * kHeight], dst[kPadded * kHeight];
  setlocale(LC_CTYPE, "");
  check(argc > 1, "usage: host LOOK.cube [FOLDER]");

  /* A bottom-up frame: the top row is the last one in memory. Blue grows to the right, red to the top; alpha is 255,
   * since a LUT multiplies colours by it. */
  uint8_t* const top = src + kPacked * (kHeight - 1);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const uint8_t pixel[4] = {(uint8_t)(255 * x / kWidth), 128, (uint8_t)(255 - 255 * y / kHeight), 255};
      memcpy(top - y * kPacked + 4 * x, pixel, 4);
    }
  }

  /* Once, before playback. A handle takes any number of frames, one thread at a time. */
  void* const lut = Create3DLutColorAdjustEffect(utf16(argv[1]), kWidth, kHeight);
  void* const clarity = CreateNLEPureCClarity(kWidth, kHeight, 0, 20, 70);
  check(lut != NULL, "the LUT cannot be used");

  /* For each frame. 60 % needs two buffers: from the source to a top-down frame with padded rows. */
  Lut3DColorAdjustEffectProcess(lut, dst, kWidth, kHeight, kPadded, top, kWidth, kHeight, -kPacked, 60);
  write_ppm("graded.ppm", dst);
  /* In place. */
  check(NLEPureCClarityProcess(clarity, dst, kWidth, kHeight, kPadded, dst, kWidth, kHeight, kPadded), "not rendered");
  write_ppm("clear.ppm", dst);
  for (int y = 0; y < kHeight; ++y) { /* white balance has no strides: padded frames go row by row */
    WhiteBalanceFun(dst + y * kPadded, dst + y * kPadded, 0, 0, 0, 0.2f, -0.05f, kWidth, 1);
  }
  write_ppm("warm.ppm", dst);

  Destory3DLutColorAdjustEffect(lut);
  DestoryNLEPureCClarity(clarity);

  if (argc > 2) { /* HLG to BT.709, limited range: a column of all greys, two pixels wide */
    uint8_t luma[2 * 220], v[110], u[110];
    for (int y = 0; y < 220; ++y) luma[2 * y] = luma[2 * y + 1] = (uint8_t)(16 + y);
    memset(v, 128, sizeof v);
    memset(u, 128, sizeof u);
    void* const hdr = CreateVideoAdjustColor(utf16(argv[2]), 0, 1, 0, 2, 220);
    check(hdr != NULL, "the name of the folder cannot be converted");
    VideoAdjustColorProcess(hdr, luma, v, u, 2, 1, 1, 0, 0, luma, v, u);
    DestroyVideoAdjustColor(hdr);
    printf("HLG grey 126 is %d in BT.709\n", luma[2 * (126 - 16)]);
  }
  return 0;
}
