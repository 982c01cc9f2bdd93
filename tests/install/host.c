/* Black and white, warmed: more red than blue. */
#include <lumvane.h>

int main(void) {
  const uint8_t src[8] = {0, 0, 0, 255, 200, 200, 200, 128};
  uint8_t dst[8];
  return WhiteBalanceFun(src, dst, 0, 0, 0, 0.25f, 0, 2, 1) && dst[2] == 0 && dst[4] == 150 && dst[6] == 250 &&
                 dst[7] == 128
             ? 0
             : 1;
}
