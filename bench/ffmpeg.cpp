extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
#include <libavutil/pixdesc.h>
}

#include <sstream>
#include <stdexcept>

#include "bench/peer.h"

namespace bench {
namespace {

void check(int code, const std::string& what) {
  if (code < 0) throw std::runtime_error("FFmpeg, code " + std::to_string(code) + ": " + what);
}

struct Free {
  void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVFilterInOut* ends) const { avfilter_inout_free(&ends); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

// An open end of the graph, with the label by which FFmpeg connects it.
Owned<AVFilterInOut> endOf(const char* name, AVFilterContext* filter) {
  Owned<AVFilterInOut> end(avfilter_inout_alloc());
  *end = {av_strdup(name), filter, 0, nullptr};
  return end;
}

class Filters : public Peer {
 public:
  Filters(const std::string& chain, const Picture& src, int threads)
      : chain_(chain),
        format_(src.format),
        graph_(avfilter_graph_alloc()),
        src_(av_frame_alloc()),
        dst_(av_frame_alloc()) {
    graph_->nb_threads = threads;
    graph_->thread_type = AVFILTER_THREAD_SLICE;
    // Filters that do not support the format fail, so that no conversion is timed.
    avfilter_graph_set_auto_convert(graph_.get(), AVFILTER_AUTO_CONVERT_NONE);
    std::ostringstream shape;
    shape << "video_size=" << src.width << 'x' << src.height << ":pix_fmt=" << src.format << ":time_base=1/25";
    check(avfilter_graph_create_filter(&source_, avfilter_get_by_name("buffer"), "in", shape.str().c_str(), nullptr,
                                       graph_.get()),
          shape.str());
    check(
        avfilter_graph_create_filter(&sink_, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, graph_.get()),
        "buffersink");
    // The parser takes ownership of both ends and returns those that it could not connect.
    AVFilterInOut* inputs = endOf("out", sink_).release();
    AVFilterInOut* outputs = endOf("in", source_).release();
    const int parsed = avfilter_graph_parse_ptr(graph_.get(), chain.c_str(), &inputs, &outputs, nullptr);
    const Owned<AVFilterInOut> inputsLeft(inputs), outputsLeft(outputs);
    check(parsed, chain);
    check(avfilter_graph_config(graph_.get(), nullptr), chain);
    fill(src);
  }

  void run() override {
    av_frame_unref(dst_.get());
    check(av_buffersrc_add_frame_flags(source_, src_.get(), AV_BUFFERSRC_FLAG_KEEP_REF), "sending a frame");
    check(av_buffersink_get_frame(sink_, dst_.get()), "receiving a frame");
  }

  Picture output() const override {
    const auto format = static_cast<AVPixelFormat>(dst_->format);
    Picture out = {av_get_pix_fmt_name(format), dst_->width, dst_->height, {}};
    for (int p = 0; p < av_pix_fmt_count_planes(format); ++p) {
      const Plane plane = planeOf(*dst_, p);
      std::vector<uint8_t> bytes(plane.rowBytes * plane.rows);
      av_image_copy_plane(bytes.data(), static_cast<int>(plane.rowBytes), dst_->data[p], dst_->linesize[p],
                          static_cast<int>(plane.rowBytes), static_cast<int>(plane.rows));
      out.planes.push_back(std::move(bytes));
    }
    return out;
  }

  std::string name() const override {
    // The path of the LUT file is not a setting.
    std::string shown = chain_;
    if (const size_t file = shown.find("file='"); file != std::string::npos) {
      shown.erase(file, shown.find("':", file) + 2 - file);
    }
    return "FFmpeg " + ffmpegVersion() + " " + shown + " on " + format_;
  }

 private:
  struct Plane {
    size_t rowBytes, rows;
  };
  static Plane planeOf(const AVFrame& frame, int p) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const AVPixFmtDescriptor* shape = av_pix_fmt_desc_get(format);
    const bool chroma = (p == 1 || p == 2) && !(shape->flags & AV_PIX_FMT_FLAG_RGB);
    return {static_cast<size_t>(av_image_get_linesize(format, frame.width, p)),
            static_cast<size_t>(chroma ? AV_CEIL_RSHIFT(frame.height, shape->log2_chroma_h) : frame.height)};
  }

  void fill(const Picture& src) {
    src_->format = av_get_pix_fmt(src.format.c_str());
    src_->width = src.width;
    src_->height = src.height;
    check(av_frame_get_buffer(src_.get(), 0), "allocating a frame");
    for (size_t p = 0; p < src.planes.size(); ++p) {
      const Plane plane = planeOf(*src_, static_cast<int>(p));
      av_image_copy_plane(src_->data[p], src_->linesize[p], src.planes[p].data(), static_cast<int>(plane.rowBytes),
                          static_cast<int>(plane.rowBytes), static_cast<int>(plane.rows));
    }
  }

  std::string chain_, format_;
  Owned<AVFilterGraph> graph_;
  Owned<AVFrame> src_, dst_;
  AVFilterContext* source_ = nullptr;
  AVFilterContext* sink_ = nullptr;
};

}  // namespace

std::unique_ptr<Peer> ffmpegFilters(const std::string& chain, const Picture& src, int threads) {
  av_log_set_level(AV_LOG_ERROR);
  if (chain.find("zscale") != std::string::npos && avfilter_get_by_name("zscale") == nullptr) return nullptr;
  return std::make_unique<Filters>(chain, src, threads);
}

std::string ffmpegVersion() { return av_version_info(); }

}  // namespace bench
