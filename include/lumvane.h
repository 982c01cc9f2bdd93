/* Lumvane: per-frame colour effects for video editing hosts.
 *
 * This applies to every function:
 *
 * Frames   Packed 8-bit pixels in memory that the caller owns: four bytes per pixel, byte 0 blue, byte 1 green, byte 2
 *          red, byte 3 alpha ("BGRA"); HDR video has planes instead. Exactly the bytes of the pixels of each row are
 *          read or written; padding between rows, and memory after the last row, is neither read nor changed. No
 *          alignment is required.
 * Strides  Bytes from the start of one row to the start of the next, signed, one for each frame or plane. What 0 and
 *          negative strides mean depends on the effect:
 *                            0               negative
 *            LUT grading     packed rows     bottom-up frame: the pointer is that of the top row of the picture, which
 *                                            has the highest address. Strides shorter than a row are taken as they
 *                                            are: rows that overlap are written from top to bottom
 *            clarity         packed rows     packed rows: a bottom-up frame has to be flipped first
 *            HDR             always the real distance, also for packed rows
 *            white balance   has no strides: rows are always packed
 * Threads  A handle serves one thread at a time, any thread. Different handles can be used concurrently. Large frames
 *          are divided among OpenCV's worker threads; a call returns when all its work is done. cv::setNumThreads sets
 *          their number, between calls, while no call of any thread is in progress; on Linux a host in C gets its
 *          address with dlsym(RTLD_DEFAULT, "_ZN2cv13setNumThreadsEi"), or with the handle from dlopen. By default
 *          there is one per processor, on Linux limited by the main thread's CPU affinity (taskset, sched_setaffinity)
 *          at the first frame or HDR object. The environment variable OPENCV_FOR_THREADS_NUM sets their number on
 *          Windows, where OpenCV is inside the DLL; with Debian's OpenCV it has no effect. If threads cannot be
 *          started, all work is done on the calling threads: on Linux the first frame or HDR object finds this out by
 *          briefly starting threads of its own, which end before that call returns. On Linux, exit() may be called while
 *          other threads are in a call: it waits up to one second for their worker threads, and the rest of those calls
 *          runs on the calling threads. Never unload the library during a call.
 * Bytes    The same input gives the same bytes on every processor and system, with any number of threads, in any locale
 *          and in any floating-point mode of the calling thread (rounding, flushed denormals, traps). The mode is
 *          restored before the call returns.
 * Failures Lumvane prints and logs nothing. When memory runs out, the call throws a C++ exception: std::bad_alloc, or
 *          cv::Exception from OpenCV. On Windows these are GCC exceptions: a host built with another compiler cannot
 *          catch them and terminates.
 * Names    The spelling "Destory" is part of the interface and will not change: hosts look functions up by name.
 */
#ifndef LUMVANE_H
#define LUMVANE_H

/* The version of this header and of the library that came with it; two digits each for minor and patch, so that 0.2.0
 * is 200. The build takes its version from here. */
#define LUMVANE_VERSION_MAJOR 0
#define LUMVANE_VERSION_MINOR 2
#define LUMVANE_VERSION_PATCH 0
#define LUMVANE_VERSION (LUMVANE_VERSION_MAJOR * 10000 + LUMVANE_VERSION_MINOR * 100 + LUMVANE_VERSION_PATCH)

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

/* Loads a LUT file and creates a grading effect.
 *
 * lutPath        NUL-terminated UTF-16. The extension, from the last '.' on, chooses the reader, in any letter case:
 *                ".cube" or ".3dl". On POSIX systems the path is converted to UTF-8; if no file can be opened under it
 *                and it contains backslashes, it is tried again with slashes instead.
 * width, height  The frame size in pixels that the host expects. Ignored: each frame has its own size.
 * Returns        A handle for the two functions below, or null: the path is null or empty, its extension is neither of
 *                the two, the file cannot be opened or is not a regular file, or it is not a table of 2 (.3dl: 3) to 65
 *                points per axis.
 * Owner          The caller, who destroys the effect with Destory3DLutColorAdjustEffect. The path is copied and the
 *                file is closed before the call returns.
 * Threads        Runs on the calling thread. Calls can run concurrently.
 * Caution        1D LUTs and shaper curves are not supported. A .cube file with one before its 3D table loads with the
 *                curve's rows as the first rows of the table, and grades wrongly. The entries of the mesh line of a
 *                .3dl file are only counted; the mesh is always treated as evenly spaced.
 * Cost           Reads the whole table: 5 to 10 ms for 65 points per axis. 1 MB of memory per handle for 33 points per
 *                axis, 3.3 MB for 65 and wherever the process has freed as much before.
 */
LUMVANE_API void* Create3DLutColorAdjustEffect(const char16_t* lutPath, int32_t width, int32_t height);

/* Grades one frame.
 *
 * The colour bytes of a pixel are looked up in the table as they are. To each result, on the scale of 0 to 255, 0.5 is
 * added, and the sum is rounded to nearest, ties to even, and clamped: 10.2 gives 11, 10 stays, 11 becomes 12. NaN and
 * results of 2^31 and more give 0. This byte is multiplied by the pixel's alpha / 255, rounded to nearest, and blended
 * with the source by the strength:
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
 * strength   Percent. 0 or less leaves the destination exactly as it was: the source is not copied. 100 or more gives
 *            the graded frame alone.
 * Overlap    dst and src may be one buffer with one stride. A frame graded in place comes out at full strength for
 *            every strength above 0: the source is overwritten before the two are blended. No other overlap.
 * Threads    One call at a time per handle, on any thread. Frames of more than 10000 pixels are divided among OpenCV's
 *            threads, in up to 8 bands. If several threads grade their first frame, one builds the table below and the
 *            others wait for it.
 * Cost       Allocates nothing per frame. The first frame of the process builds a table that all handles share:
 *            18.7 MB, kept until the library is unloaded.
 */
LUMVANE_API void Lut3DColorAdjustEffectProcess(void* handle, uint8_t* dst, int32_t width, int32_t height,
                                               int32_t dstStride, const uint8_t* src, int32_t srcWidth,
                                               int32_t srcHeight, int32_t srcStride, int32_t strength);

/* Destroys a grading effect and frees its memory.
 *
 * handle   From Create3DLutColorAdjustEffect, not in use by another call. Null: the call does nothing.
 * Threads  Any thread. Calls with different handles can run concurrently.
 */
LUMVANE_API void Destory3DLutColorAdjustEffect(void* handle);

/* ---- Clarity: raises the local contrast of frames at many scales, and scales their saturation -------------------- */

/* Creates a clarity effect.
 *
 * width, height  Size of the frames in pixels. It only sets the number of pyramid levels: 8 for a shorter side of 65
 *                pixels or more, fewer below. Frames of another size are rendered whole, with this number of levels.
 *                Any value; 0 or less gives one level, with which intensity has no effect.
 * reserved       Not read.
 * saturation     Percent, -100 to 100, clamped: the saturation of each pixel is multiplied by 0.85 to 1.15 and clamped
 *                to its range. 0 leaves it unchanged.
 * intensity      Percent, 0 to 100, clamped: how much of the raised contrast is blended in. 0 leaves it unchanged.
 * Returns        A handle for the two functions below. No value of the arguments makes this fail.
 * Owner          The caller, who destroys the effect with DestoryNLEPureCClarity.
 * Threads        Runs on the calling thread. Calls can run concurrently.
 * Cost           Negligible; memory for frames is allocated with the first one.
 */
LUMVANE_API void* CreateNLEPureCClarity(int32_t width, int32_t height, int32_t reserved, int32_t saturation,
                                        int32_t intensity);

/* Renders one frame. Colours are used as they are, whatever their alpha; hue does not change, and the alpha of the
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
 * Overlap    dst and src may overlap in any way, even as one buffer with two strides: the source is always what src
 *            held before the call. If they overlap and are not the same pixels at the same places, the call copies src.
 * Returns    1 when the frame was rendered. 0, with the destination unchanged: a null handle or buffer, a width or
 *            height of 0 or less, a stride above 0 and below width * 4.
 * Threads    One call at a time per handle, on any thread. Frames of any size are divided among OpenCV's threads, in up
 *            to 16 stripes.
 * Cost       After its first frame a handle keeps a pyramid of floats, about 3 bytes per pixel (6 MB at 1920 x 1080),
 *            which is reallocated for a frame of another size. The copy of overlapping frames takes 4 bytes per pixel
 *            during the call.
 */
LUMVANE_API int32_t NLEPureCClarityProcess(void* handle, uint8_t* dst, int32_t width, int32_t height, int32_t dstStride,
                                           const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStride);

/* Destroys a clarity effect and frees its memory.
 *
 * handle   From CreateNLEPureCClarity, not in use by another call. Null: the call does nothing.
 * Threads  Any thread. Calls with different handles can run concurrently.
 */
LUMVANE_API void DestoryNLEPureCClarity(void* handle);

/* ---- White balance: shifts the colours of a frame between blue and red, and between green and magenta ----------- */

/* Multiplies the colour bytes of one frame by three gains:
 *
 *   blue: 1 + tint / 2 - temperature,    green: 1 - tint,    red: 1 + tint / 2 + temperature,
 *
 * in single precision, and truncates the products to bytes: 3 times 0.5 gives 1. Products out of range are clamped, NaN
 * gives 0. The alpha of the source reaches the destination unchanged.
 *
 * src          Source frame, width x height pixels, read. Packed rows: width * 4 bytes each, nothing between them.
 * dst          Destination frame of the same shape, written. May be src; no other overlap. When either is null and the
 *              frame is not empty, the call throws cv::Exception.
 * reserved1-3  Not read.
 * temperature  Any value. Negative is colder, positive warmer; 0.5 halves the blue of a grey and adds half to its red.
 * tint         Any value. Negative is greener, positive more magenta.
 * width        Pixels per row. 0 or less: nothing is read or written.
 * height       Rows. 0 or less: nothing is read or written.
 * Returns      true in every case.
 * Threads      Runs on the calling thread. Calls on different frames can run concurrently.
 * Cost         Allocates nothing.
 */
LUMVANE_API bool WhiteBalanceFun(const uint8_t* src, uint8_t* dst, float reserved1, float reserved2, float reserved3,
                                 float temperature, float tint, int32_t width, int32_t height);

/* ---- HDR to BT.709: turns BT.2020 video with an HLG or PQ transfer into BT.709 video ----------------------------- */

/* Creates an HDR converter for frames of one size. The first call of the process loads two LUT files for all handles,
 * "HDR_HLG.cube" and "HDR_PQ.cube", and computes their results for each of the 2^24 colours. Later calls read no file,
 * even with another directory.
 *
 * lutDirectory   NUL-terminated UTF-16, without a separator at its end: a backslash and the file names are appended.
 *                The paths are converted as in Create3DLutColorAdjustEffect, so the files are found in this directory
 *                on POSIX systems as well.
 * reservedMode   Not read.
 * limitedRange   Not 0: limited range in and out (Y from 16 to 235); 0: full range in and out.
 * usePq          Not 0: PQ, through "HDR_PQ.cube"; 0: HLG, through "HDR_HLG.cube".
 * width, height  Frame size in pixels; may be odd.
 * Returns        A handle for the functions below, or null for a null directory. A LUT file that is missing or cannot
 *                be used is not reported. If the file is missing or its header is refused, the frames that need it
 *                come out black. If it is damaged after the header, the rows before the damage are used, and all other
 *                points of the table are black. Create3DLutColorAdjustEffect gives null for such files.
 * Caution        Results below 0 wrap around: only the low 8 bits of a result are kept, so that table values of -1.5 /
 *                255 or less turn shadows white or coloured. Many published cubes have such values for codes below
 *                black; others expect narrow-range codes, or a domain other than 0 to 1, which here scales the output.
 *                So clamp and resample a cube before use: "lumvane-host hdr-luts --hlg X.cube --pq Y.cube FOLDER" does
 *                both.
 * Owner          The caller, who destroys the object with DestroyVideoAdjustColor.
 * Threads        Calls can run concurrently. The first one uses OpenCV's threads, and others wait until it has loaded
 *                the files.
 * Failures       Throws std::bad_alloc when memory runs out, when a LUT file cannot be opened because the process or
 *                the system has too many files open, for a negative width or height, and for frames of 2^29 pixels or
 *                more. If the first call throws, the next one tries to load the files again.
 * Cost           The first call reads both files: about 0.05 s for two of 65 points. The results and tables, 108 MB,
 *                stay until the library is unloaded. Each handle reserves 8 bytes of address space per pixel; large
 *                frames use only some rows of that (below 0.5 MB at 1920 x 1080), unless source and
 *                destination overlap.
 */
LUMVANE_API void* CreateVideoAdjustColor(const char16_t* lutDirectory, int32_t reservedMode, int32_t limitedRange,
                                         int32_t usePq, int32_t width, int32_t height);

/* Converts one frame of the object's size: BT.2020 non-constant luminance in, BT.709 out, 8 bits, 4:2:0.
 *
 * handle           From CreateVideoAdjustColor; must not be null.
 * srcPlane0, 1, 2  Source planes in the order of YV12: Y, width x height, then V (Cr) and U (Cb), each (width + 1) / 2
 *                  x (height + 1) / 2. Chroma is sited on the left pixel of each pair, between the rows. Must not be
 *                  null.
 * stride0, 1, 2    Stride of each plane in bytes, the same for source and destination; at least the bytes of a row.
 * reservedA, B     Not read.
 * dstPlane0, 1, 2  Destination planes of the same shape and order, written.
 * Overlap          A destination plane may be the source plane of the same number. No other overlap.
 * Returns          true in every case.
 * Threads          One call at a time per handle, on any thread. Frames of 10000 pixels or more are divided among
 *                  OpenCV's threads, in up to 8 bands; with overlapping planes, only the part between the conversions.
 * Cost             Allocates nothing.
 */
LUMVANE_API bool VideoAdjustColorProcess(void* handle, const uint8_t* srcPlane0, const uint8_t* srcPlane1,
                                         const uint8_t* srcPlane2, int32_t stride0, int32_t stride1, int32_t stride2,
                                         int32_t reservedA, int32_t reservedB, uint8_t* dstPlane0, uint8_t* dstPlane1,
                                         uint8_t* dstPlane2);

/* Destroys an HDR converter and frees its memory; shared data stays.
 *
 * handle   From CreateVideoAdjustColor, not in use by another call. Null: the call does nothing.
 * Threads  Any thread. Calls with different handles can run concurrently.
 */
LUMVANE_API void DestroyVideoAdjustColor(void* handle);

#ifdef __cplusplus
}
#endif

#endif /* LUMVANE_H */
