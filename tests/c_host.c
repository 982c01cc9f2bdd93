/* A C host that uses only lumvane.h and links only the shared object. */
#include <stddef.h>
#include <stdio.h>

#include "lumvane.h"

#if LUMVANE_VERSION < 200 || LUMVANE_VERSION >= 10000 * (LUMVANE_VERSION_MAJOR + 1)
#error "LUMVANE_VERSION is missing or wrong"
#endif

int main(int argc, char** argv) {
  char16_t path[1024] = {0};
  uint8_t src[4] = {40, 120, 200, 255}, dst[4] = {0, 0, 0, 0}, planes[3] = {0, 0, 0};
  void* effect;
  size_t i;
  if (argc != 2) return 2;
  for (i = 0; argv[1][i] != 0 && i < 1023; ++i) path[i] = (char16_t)(unsigned char)argv[1][i];

  Destory3DLutColorAdjustEffect(NULL);
  Lut3DColorAdjustEffectProcess(NULL, dst, 1, 1, 4, src, 1, 1, 4, 100);
  if (Create3DLutColorAdjustEffect(NULL, 1, 1) != NULL) return 3;

  effect = Create3DLutColorAdjustEffect(path, 1, 1);
  if (effect == NULL) return 4;
  Lut3DColorAdjustEffectProcess(effect, dst, 1, 1, 4, src, 1, 1, 4, 100);
  Destory3DLutColorAdjustEffect(effect);
  if (!WhiteBalanceFun(dst, dst, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1, 1)) return 6;

  effect = CreateNLEPureCClarity(1, 1, 0, 0, 0);
  if (effect == NULL || NLEPureCClarityProcess(effect, dst, 1, 1, 4, dst, 1, 1, 4) != 1) return 7;
  if (NLEPureCClarityProcess(NULL, dst, 1, 1, 4, dst, 1, 1, 4) != 0) return 8;
  DestoryNLEPureCClarity(effect);
  DestoryNLEPureCClarity(NULL);

  /* Without LUT files every frame comes out black. */
  if (CreateVideoAdjustColor(NULL, 0, 1, 0, 1, 1) != NULL) return 9;
  effect = CreateVideoAdjustColor(path, 0, 1, 0, 1, 1);
  if (effect == NULL) return 10;
  if (!VideoAdjustColorProcess(effect, src, src, src, 1, 1, 1, 0, 0, planes, planes + 1, planes + 2)) return 11;
  if (planes[0] != 16 || planes[1] != 128 || planes[2] != 128) return 12;
  DestroyVideoAdjustColor(effect);
  DestroyVideoAdjustColor(NULL);

  printf("%d %d %d %d\n", dst[0], dst[1], dst[2], dst[3]);
  /* A warm black-and-white look: blue below green below red. */
  return dst[0] < dst[1] && dst[1] < dst[2] && dst[3] == 255 ? 0 : 5;
}
