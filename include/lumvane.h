/* Lumvane: per-frame colour effects for video editing hosts.
 *
 * What holds for every function:
 *
 * Frames   Packed 8-bit pixels in memory that the caller owns: four bytes a pixel, byte 0 blue, byte 1 green, byte 2
 *          red, byte 3 alpha ("BGRA"); HDR video has planes instead. Of each row exactly the bytes of its pixels are
 *          read or written; padding between rows, and whatever lies behind the last row, is neither read nor changed.
 *          No alignment is asked for.
 * Strides  Bytes from the start of one row to the start of the next, signed, one for each frame or plane. The families
 *          differ in what 0 and negative strides mean:
 *                            0               negative
 *            LUT grading     packed rows     rows walk upwards in memory: the pointer is that of the row shown at the
 *                                            top, which lies at the highest address, as in a bottom-up bitmap
 *            clarity         packed rows     packed rows: a bottom-up frame has to be turned over first
 *            HDR             no short form: always the real distance
 *            white balance   has no strides: rows are always packed
 * Threads  A handle serves one thread at a time. Different handles may be used side by side. Large frames are spread
 *          over OpenCV's worker threads; a call returns when all its work is done. cv::setNumThreads governs how many
 *          there are; on Windows, where OpenCV is inside the DLL, OPENCV_FOR_THREADS_NUM in the environment does. If
 *          they cannot be started, all work is done on the calling threads. exit() may be called while calls are under
 *          way; unloading the library may not.
 * Bytes    The same input gives the same bytes on every processor, system and number of threads. Nor do the locale
 *          and the floating-point mode of the calling thread matter (rounding, denormals flushed or not, traps); the mode
 *          is found as it was.
 * Failures Nothing prints or logs. What C++ throws when memory runs out passes out of the call: std::bad_alloc, or
 *          cv::Exception from within OpenCV. On Windows these are exceptions of GCC: a host that another compiler
 *          built cannot catch them, and ends.
 * Names    Stand as they are, "Destory" included: hosts look them up by these letters.
 */
#ifndef LUMVANE_H
#define LUMVANE_H

#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#include <uchar.h> /* char16_t */
#endif

#if defined(_WIN32)
#ifdef LUMVANE_BUILD
#define LUMVANE_API __declspec(dllexport)
#else
#define LUMVANE_API __declspec(dllimport)
#endif
#else
#define LUMVANE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- LUT grading: recolours frames through a 3D lookup table, by tetrahedral interpolation ----------------------- */

/* Loads a LUT file and makes a grading effect of it.
 *
 * lutPath        NUL-terminated UTF-16. The text from its last '.' on chooses the reader, in any letter case: ".cube"
 *                or ".3dl". On POSIX systems the path goes to the file system as UTF-8; if no file can be opened there
 *                and the path holds a backslash, it is tried once more with slashes in place of the backslashes.
 * width, height  The frame size in pixels that the host expects. Any value: each frame brings its own size.
 * Returns        A handle for the two functions below, or null: the path is null or empty, has no extension or another
 *                one, the file cannot be opened, or its contents are not a table of 2 (.3dl: 3) to 65 points per axis.
 * Owner          The caller, who ends the handle with Destory3DLutColorAdjustEffect. The path is copied and the file is
 *                closed before the call returns.
 * Caution        One-dimensional tables and shaper curves are not read. A .cube file that holds one ahead of its 3D
 *                table loads with the curve's rows taken for rows of the table, and grades wrongly; the mesh line of a
 *                .3dl file is counted, and always taken as evenly spaced.
 * Cost           Reads the whole table: some 10 ms for 65 points per axis. 3.3 MB of memory a handle, whatever the size
 *                of the table.
 */
LUMVANE_API void* Create3DLutColorAdjustEffect(const char16_t* lutPath, int32_t width, int32_t height);

/* Grades one frame.
 *
 * The colour bytes of a pixel are looked up in the table as they are, the result is multiplied by the pixel's alpha,
 * and what comes of it is faded against the source by the strength:
 *   destination = (source * (255 - s) + graded * s) / 255, truncated, with s = strength * 255 / 100, truncated.
 * The alpha of the source reaches the destination unchanged.
 *
 * handle     From Create3DLutColorAdjustEffect. Null: the call does nothing.
 * dst        Destination frame, width x height pixels, written. Null: the call does nothing.
 * width      Pixels per row of both frames. 0 or less: nothing is read or written.
 * height     Rows of both frames. 0 or less: nothing is read or written.
 * dstStride  Stride of the destination, see above.
 * src        Source frame, width x height pixels, read. Null: the call does nothing.
 * srcWidth   Not read.
 * srcHeight  Not read.
 * srcStride  Stride of the source, see above.
 * strength   Percent. 0 or less leaves the destination exactly as it was, with no copy of the source; 100 or more gives
 *            the graded frame alone.
 * Overlap    dst and src may be one buffer with one stride. A frame graded in place comes out at full strength for
 *            every strength above 0, since the fade then finds the graded pixel in both. No other overlap.
 * Cost       Allocates nothing per frame. The first frame of the process builds the blend table that all handles share:
 *            18.7 MB, kept until the library is unloaded.
 */
LUMVANE_API void Lut3DColorAdjustEffectProcess(void* handle, uint8_t* dst, int32_t width, int32_t height,
                                               int32_t dstStride, const uint8_t* src, int32_t srcWidth,
                                               int32_t srcHeight, int32_t srcStride, int32_t strength);

/* Ends a grading effect and frees its memory.
 *
 * handle  From Create3DLutColorAdjustEffect, with no call on it under way. Null: the call does nothing.
 */
LUMVANE_API void Destory3DLutColorAdjustEffect(void* handle);

/* ---- Clarity: raises the local contrast of frames at many scales, and scales their saturation -------------------- */

/* Makes a clarity effect.
 *
 * width, height  Size of the frames in pixels. It sets how many levels the pyramid has, and nothing else: from a
 *                shorter side of 65 on there are 8 of them, below it fewer. Frames of another size are rendered whole,
 *                with this number of levels. Any value; 0 or less gives one level, with which intensity has no effect.
 * reserved       Not read.
 * saturation     Percent, -100 to 100, clamped: the saturation of each pixel is multiplied by 0.85 to 1.15 and held to
 *                its range. 0 leaves it alone.
 * intensity      Percent, 0 to 100, clamped: how much of the raised contrast is blended over the frame. 0 leaves it
 *                alone.
 * Returns        A handle for the two functions below. No value of the arguments makes this fail.
 * Owner          The caller, who ends the handle with DestoryNLEPureCClarity.
 * Cost           Next to nothing; memory for frames is taken with the first one.
 */
LUMVANE_API void* CreateNLEPureCClarity(int32_t width, int32_t height, int32_t reserved, int32_t saturation,
                                        int32_t intensity);

/* Renders one frame. Colours are taken as they are, whatever their alpha; hue does not change, and the alpha of the
 * source reaches the destination unchanged. Saturation 0 with intensity 0 gives the source back, byte for byte.
 *
 * handle     From CreateNLEPureCClarity.
 * dst        Destination frame, width x height pixels, written.
 * width      Pixels per row of both frames.
 * height     Rows of both frames.
 * dstStride  Stride of the destination, at least width * 4; 0 or less means packed rows.
 * src        Source frame, width x height pixels, read.
 * srcWidth   Not read.
 * srcHeight  Not read.
 * srcStride  Stride of the source, by the same rule.
 * Overlap    dst and src may overlap in any way, also as one buffer with two strides: the frame that is rendered is the
 *            one that src held before the call. Where they overlap, and are not the same pixels at the same places, the
 *            call works from a copy of src.
 * Returns    1 when the frame was rendered. 0, with the destination as it was: a null handle or buffer, a width or
 *            height of 0 or less, a stride above 0 and below width * 4.
 * Cost       A handle keeps planes of floats from its first frame on, some 9 bytes a pixel (19 MB at 1920 x 1080), and
 *            makes them anew for a frame of another size.
 */
LUMVANE_API int32_t NLEPureCClarityProcess(void* handle, uint8_t* dst, int32_t width, int32_t height, int32_t dstStride,
                                           const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStride);

/* Ends a clarity effect and frees its memory.
 *
 * handle  From CreateNLEPureCClarity, with no call on it under way. Null: the call does nothing.
 */
LUMVANE_API void DestoryNLEPureCClarity(void* handle);

/* ---- White balance: shifts the colours of a frame between blue and red, and between green and magenta ----------- */

/* Multiplies the colour bytes of one frame by three gains:
 *
 *   blue: 1 + tint / 2 - temperature,    green: 1 - tint,    red: 1 + tint / 2 + temperature,
 *
 * in single precision, and truncates the products to bytes: 3 times 0.5 gives 1. Products beyond either end count as
 * that end, one that is no number as 0. The alpha of the source reaches the destination unchanged.
 *
 * src          Source frame, width x height pixels, read. Packed rows: width * 4 bytes each, nothing between them.
 * dst          Destination frame of the same shape, written. May be src; no other overlap. When either is null and the
 *              frame is not empty, a cv::Exception passes out of the call.
 * reserved1-3  Not read.
 * temperature  From cold to warm, around 0 for no change; 0.5 halves the blue of a grey and adds half to its red. Any
 *              value.
 * tint         From green to magenta, around 0 for no change. Any value.
 * width        Pixels per row. 0 or less: nothing is read or written.
 * height       Rows. 0 or less: nothing is read or written.
 * Returns      true in every case.
 * Threads      Runs on the calling thread and keeps nothing: calls on different frames may run side by side.
 * Cost         Allocates nothing.
 */
LUMVANE_API bool WhiteBalanceFun(const uint8_t* src, uint8_t* dst, float reserved1, float reserved2, float reserved3,
                                 float temperature, float tint, int32_t width, int32_t height);

/* ---- HDR to BT.709: turns BT.2020 video with an HLG or PQ transfer into BT.709 video ----------------------------- */

/* Makes a video colour adjust for frames of one size. The first call of the process loads two LUT files for all
 * objects, "HDR_HLG.cube" and "HDR_PQ.cube", and computes what they make of each of the 2^24 colours. No later call
 * reads a file, whatever its directory.
 *
 * lutDirectory   NUL-terminated UTF-16, with no separator at its end: a backslash and the file names are appended. The
 *                paths reach the file system as told at Create3DLutColorAdjustEffect, so that the files lie in this
 *                directory on POSIX systems, too.
 * reservedMode   Not read.
 * limitedRange   Not 0: frames are of limited range, in and out (Y from 16 to 235); 0: of full range, in and out.
 * usePq          Not 0: frames have the PQ transfer and go through "HDR_PQ.cube"; 0: HLG, and "HDR_HLG.cube".
 * width, height  Frame size in pixels; odd ones are taken.
 * Returns        A handle for the functions below, or null for a null directory. A LUT file that is missing or cannot
 *                be used is not reported. Without a file, or with one whose header is refused, the frames that need it
 *                come out black; of one that is damaged further on, the rows ahead of the damage count, and all other
 *                points of the table are black. Create3DLutColorAdjustEffect gives null for such files.
 * Owner          The caller, who ends the handle with DestroyVideoAdjustColor.
 * Threads        Calls may run side by side; the first ones wait for the load.
 * Failures       std::bad_alloc passes out when memory runs out, when a LUT file cannot be opened because the process or
 *                the system has too many files open, for a negative size, and for frames of 2^31 bytes and more at four
 *                bytes a pixel. When that ends the first call, the next one loads.
 * Cost           The first call reads both files and takes some 0.1 s for two of 65 points on two threads. What
 *                it makes, 108 MB, stays until the library is unloaded. Every call: 8 bytes a pixel.
 */
LUMVANE_API void* CreateVideoAdjustColor(const char16_t* lutDirectory, int32_t reservedMode, int32_t limitedRange,
                                         int32_t usePq, int32_t width, int32_t height);

/* Converts one frame of the object's size: BT.2020 non-constant luminance in, BT.709 out, 8 bits, 4:2:0.
 *
 * handle           From CreateVideoAdjustColor; not tested for null.
 * srcPlane0, 1, 2  Source planes in the order of YV12: Y, width x height, then V (Cr) and U (Cb), each (width + 1) / 2
 *                  x (height + 1) / 2. Chroma lies on the left of each pair of pixels, between the rows. Not tested for
 *                  null.
 * stride0, 1, 2    Bytes from one row of the plane to the next, the same for source and destination; at least the bytes
 *                  of a row.
 * reservedA, B     Not read.
 * dstPlane0, 1, 2  Destination planes of the same shape and order, written.
 * Overlap          A destination plane may be the source plane of the same number. No other overlap.
 * Returns          true in every case.
 * Cost             Allocates nothing.
 */
LUMVANE_API bool VideoAdjustColorProcess(void* handle, const uint8_t* srcPlane0, const uint8_t* srcPlane1,
                                         const uint8_t* srcPlane2, int32_t stride0, int32_t stride1, int32_t stride2,
                                         int32_t reservedA, int32_t reservedB, uint8_t* dstPlane0, uint8_t* dstPlane1,
                                         uint8_t* dstPlane2);

/* Ends a video colour adjust and frees its memory; what all of them share stays.
 *
 * handle  From CreateVideoAdjustColor, with no call on it under way. Null: the call does nothing.
 */
LUMVANE_API void DestroyVideoAdjustColor(void* handle);

#ifdef __cplusplus
}
#endif

#endif /* LUMVANE_H */
