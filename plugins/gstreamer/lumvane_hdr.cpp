// The GStreamer element lumvanehdr: converts BT.2020 video with an HLG or PQ transfer to BT.709.
#define PACKAGE "lumvane"
#include <gst/video/gstvideofilter.h>

#include <exception>
#include <filesystem>
#include <mutex>
#include <utility>

#include "lumvane.h"

namespace {

struct LumvaneHdr {
  GstVideoFilter parent;
  gchar* luts;   // folder, UTF-8, or null
  void* effect;  // for the current caps, or null
  bool failed;   // since the last start
};

struct LumvaneHdrClass {
  GstVideoFilterClass parent;
};

G_DEFINE_TYPE(LumvaneHdr, lumvane_hdr, GST_TYPE_VIDEO_FILTER)

// Reports only the first error: rejected caps return with every event and frame.
#define REPORT_ONCE(element, ...) \
  if (!std::exchange(self(element)->failed, true)) GST_ELEMENT_ERROR(element, __VA_ARGS__)

LumvaneHdr* self(gpointer object) { return static_cast<LumvaneHdr*>(object); }

// ---- Caps -----------------------------------------------------------------------------------------------------------

// The sink template leaves colorimetry open, and other video than HDR is rejected later: given two to choose from,
// videoconvert does not convert but labels any video as the first one, PQ and BT.709 included.
GstStaticPadTemplate sinkTemplate =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(GST_VIDEO_CAPS_MAKE("{I420, YV12}")));
GstStaticPadTemplate srcTemplate = GST_STATIC_PAD_TEMPLATE(
    "src", GST_PAD_SRC, GST_PAD_ALWAYS,
    GST_STATIC_CAPS(GST_VIDEO_CAPS_MAKE("{I420, YV12}") ", colorimetry = (string) {bt709, 1:3:5:1}"));

bool isPq(const GstVideoColorimetry& video) { return video.transfer == GST_VIDEO_TRANSFER_SMPTE2084; }

bool isFullRange(const GstVideoColorimetry& video) { return video.range == GST_VIDEO_COLOR_RANGE_0_255; }

bool isHdr(const GstVideoColorimetry& video) {
  return video.matrix == GST_VIDEO_COLOR_MATRIX_BT2020 && video.primaries == GST_VIDEO_COLOR_PRIMARIES_BT2020 &&
         (isPq(video) || video.transfer == GST_VIDEO_TRANSFER_ARIB_STD_B67);
}

// Returns whether caps allow HDR of this range. The same colorimetry has several names, so they are parsed.
bool allowsHdr(const GValue* names, bool fullRange) {
  if (names == nullptr) return true;
  if (GST_VALUE_HOLDS_LIST(names)) {
    for (guint i = 0; i < gst_value_list_get_size(names); ++i) {
      if (allowsHdr(gst_value_list_get_value(names, i), fullRange)) return true;
    }
    return false;
  }
  GstVideoColorimetry video;
  return G_VALUE_HOLDS_STRING(names) && gst_video_colorimetry_from_string(&video, g_value_get_string(names)) &&
         isHdr(video) && isFullRange(video) == fullRange;
}

GstCaps* filtered(GstCaps* caps, GstCaps* filter) {
  if (filter == nullptr) return caps;
  GstCaps* both = gst_caps_intersect_full(filter, caps, GST_CAPS_INTERSECT_FIRST);
  gst_caps_unref(caps);
  return both;
}

// Everything but the colours is kept: format, size, range, rate, chroma siting.
GstCaps* transformCaps(GstBaseTransform*, GstPadDirection direction, GstCaps* caps, GstCaps* filter) {
  GstCaps* result = gst_caps_new_empty();
  for (guint i = 0; i < gst_caps_get_size(caps); ++i) {
    const GstStructure* from = gst_caps_get_structure(caps, i);
    for (const bool fullRange : {false, true}) {
      if (direction == GST_PAD_SINK && !allowsHdr(gst_structure_get_value(from, "colorimetry"), fullRange)) continue;
      GstStructure* to = gst_structure_copy(from);
      // HDR mastering metadata does not apply to the BT.709 video.
      gst_structure_remove_fields(to, "colorimetry", "mastering-display-info", "content-light-level", nullptr);
      if (direction == GST_PAD_SINK) {
        gst_structure_set(to, "colorimetry", G_TYPE_STRING, fullRange ? "1:3:5:1" : GST_VIDEO_COLORIMETRY_BT709,
                          nullptr);
      }
      result = gst_caps_merge_structure(result, to);
    }
  }
  return filtered(result, filter);
}

// Leaves colorimetry open upstream: the base class would first offer what downstream accepts unchanged, BT.709.
gboolean query(GstBaseTransform* transform, GstPadDirection direction, GstQuery* query) {
  if (!GST_BASE_TRANSFORM_CLASS(lumvane_hdr_parent_class)->query(transform, direction, query)) return FALSE;
  if (direction != GST_PAD_SINK || GST_QUERY_TYPE(query) != GST_QUERY_CAPS) return TRUE;
  GstCaps *found, *filter, *open = gst_caps_new_empty();
  gst_query_parse_caps(query, &filter);
  gst_query_parse_caps_result(query, &found);
  for (guint i = 0; i < gst_caps_get_size(found); ++i) {
    GstStructure* structure = gst_structure_copy(gst_caps_get_structure(found, i));
    gst_structure_remove_field(structure, "colorimetry");
    open = gst_caps_merge_structure(open, structure);
  }
  open = filtered(open, filter);
  gst_query_set_caps_result(query, open);
  gst_caps_unref(open);
  return TRUE;
}

// Accepts other video too, which sinkEvent rejects: a rejection here would end the pipeline without a reason.
gboolean acceptCaps(GstBaseTransform* transform, GstPadDirection direction, GstCaps* caps) {
  if (direction != GST_PAD_SINK) {
    return GST_BASE_TRANSFORM_CLASS(lumvane_hdr_parent_class)->accept_caps(transform, direction, caps);
  }
  GstCaps* supported = gst_static_pad_template_get_caps(&sinkTemplate);
  const gboolean accepted = gst_caps_is_subset(caps, supported);
  gst_caps_unref(supported);
  return accepted;
}

gboolean sinkEvent(GstBaseTransform* transform, GstEvent* event) {
  if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
    GstCaps* caps;
    gst_event_parse_caps(event, &caps);
    const char* name = gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry");
    GstVideoColorimetry video;
    if (name == nullptr || !gst_video_colorimetry_from_string(&video, name) || !isHdr(video)) {
      REPORT_ONCE(
          transform, STREAM, WRONG_TYPE,
          ("The video is not marked as BT.2020 with an HLG or PQ transfer: colorimetry %s", name ? name : "is missing"),
          ("bt2100-hlg or bt2100-pq is needed; capssetter marks video that is one of them"));
      gst_event_unref(event);
      return FALSE;
    }
  }
  return GST_BASE_TRANSFORM_CLASS(lumvane_hdr_parent_class)->sink_event(transform, event);
}

// ---- Frames ---------------------------------------------------------------------------------------------------------

// The library reads both LUT files once per process, and does not report failures.
struct {
  std::mutex mutex;
  std::filesystem::path folder;  // empty: not read yet
  bool usable[2];                // HLG, PQ
} loaded;

bool isUsable(const std::filesystem::path& file) {
  void* effect = Create3DLutColorAdjustEffect(file.u16string().c_str(), 0, 0);
  Destory3DLutColorAdjustEffect(effect);
  return effect != nullptr;
}

// Returns null after posting an error.
void* createEffect(LumvaneHdr* element, const gchar* luts, const GstVideoInfo* video) {
  const bool pq = isPq(video->colorimetry);
  const std::u8string utf8(luts, luts + std::char_traits<char>::length(luts));
  const std::filesystem::path folder = std::filesystem::weakly_canonical(utf8);
  const std::scoped_lock lock(loaded.mutex);
  if (!loaded.folder.empty() && folder != loaded.folder) {
    REPORT_ONCE(element, RESOURCE, SETTINGS,
                ("'%s' cannot be used: this process already has its HDR LUTs from '%s'", luts, loaded.folder.c_str()),
                (nullptr));
    return nullptr;
  }
  if (loaded.folder.empty()) {
    loaded.usable[0] = isUsable(folder / "HDR_HLG.cube");
    loaded.usable[1] = isUsable(folder / "HDR_PQ.cube");
  }
  if (!loaded.usable[pq]) {
    REPORT_ONCE(element, RESOURCE, NOT_FOUND, ("'%s' has no HDR_%s.cube that can be used", luts, pq ? "PQ" : "HLG"),
                (nullptr));
    return nullptr;
  }
  void* effect = CreateVideoAdjustColor(folder.u16string().c_str(), 0, !isFullRange(video->colorimetry), pq,
                                        GST_VIDEO_INFO_WIDTH(video), GST_VIDEO_INFO_HEIGHT(video));
  loaded.folder = folder;
  return effect;
}

void destroyEffect(LumvaneHdr* element) { DestroyVideoAdjustColor(std::exchange(element->effect, nullptr)); }

gboolean setInfo(GstVideoFilter* filter, GstCaps*, GstVideoInfo* in, GstCaps*, GstVideoInfo*) {
  LumvaneHdr* element = self(filter);
  destroyEffect(element);
  GST_OBJECT_LOCK(element);
  gchar* luts = g_strdup(element->luts);
  GST_OBJECT_UNLOCK(element);
  if (luts == nullptr || *luts == 0) {
    REPORT_ONCE(element, RESOURCE, SETTINGS, ("The property luts is not set"), (nullptr));
  } else {
    try {
      element->effect = createEffect(element, luts, in);
    } catch (const std::exception& error) {  // out of memory, frame too large, name not valid UTF-8
      REPORT_ONCE(element, LIBRARY, INIT, ("The HDR converter cannot be created"), ("%s", error.what()));
    }
  }
  g_free(luts);
  return element->effect != nullptr;
}

gboolean start(GstBaseTransform* transform) {
  self(transform)->failed = false;
  return TRUE;
}

gboolean stop(GstBaseTransform* transform) {
  destroyEffect(self(transform));
  return TRUE;
}

GstFlowReturn transformFrame(GstVideoFilter* filter, GstVideoFrame* in, GstVideoFrame* out) {
  // The library has one set of strides for both frames. If they differ, the frame is copied and converted in place.
  bool sameStrides = true;
  for (int plane = 0; plane < 3; ++plane) {
    sameStrides = sameStrides && GST_VIDEO_FRAME_COMP_STRIDE(in, plane) == GST_VIDEO_FRAME_COMP_STRIDE(out, plane);
  }
  if (!sameStrides && !gst_video_frame_copy(out, in)) return GST_FLOW_ERROR;
  const GstVideoFrame* src = sameStrides ? in : out;
  const auto from = [&](int i) { return static_cast<const uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(src, i)); };
  const auto to = [&](int i) { return static_cast<uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(out, i)); };
  const auto stride = [&](int i) { return GST_VIDEO_FRAME_COMP_STRIDE(out, i); };
  // Components are Y, U, V in both formats; the library expects V before U.
  VideoAdjustColorProcess(self(filter)->effect, from(0), from(2), from(1), stride(0), stride(2), stride(1), 0, 0, to(0),
                          to(2), to(1));
  return GST_FLOW_OK;
}

// ---- Object ---------------------------------------------------------------------------------------------------------

constexpr guint kLuts = 1;

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) {
  if (id != kLuts) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    return;
  }
  GST_OBJECT_LOCK(object);
  g_free(self(object)->luts);
  self(object)->luts = g_value_dup_string(value);
  GST_OBJECT_UNLOCK(object);
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) {
  if (id != kLuts) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    return;
  }
  GST_OBJECT_LOCK(object);
  g_value_set_string(value, self(object)->luts);
  GST_OBJECT_UNLOCK(object);
}

void finalize(GObject* object) {
  destroyEffect(self(object));
  g_free(self(object)->luts);
  G_OBJECT_CLASS(lumvane_hdr_parent_class)->finalize(object);
}

void lumvane_hdr_init(LumvaneHdr*) {}

void lumvane_hdr_class_init(LumvaneHdrClass* type) {
  GObjectClass* object = G_OBJECT_CLASS(type);
  object->set_property = setProperty;
  object->get_property = getProperty;
  object->finalize = finalize;
  g_object_class_install_property(
      object, kLuts,
      g_param_spec_string(
          "luts", "LUTs", "Folder with HDR_HLG.cube and HDR_PQ.cube; the same for all elements of a process", nullptr,
          static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_READY)));
  GstElementClass* element = GST_ELEMENT_CLASS(type);
  gst_element_class_set_static_metadata(element, "Lumvane HDR to BT.709", "Filter/Converter/Video/Colorspace",
                                        "Converts BT.2020 video with an HLG or PQ transfer to BT.709",
                                        "The Lumvane authors");
  gst_element_class_add_static_pad_template(element, &sinkTemplate);
  gst_element_class_add_static_pad_template(element, &srcTemplate);
  GstBaseTransformClass* transform = GST_BASE_TRANSFORM_CLASS(type);
  transform->transform_caps = transformCaps;
  transform->query = query;
  transform->accept_caps = acceptCaps;
  transform->sink_event = sinkEvent;
  transform->start = start;
  transform->stop = stop;
  GstVideoFilterClass* filter = GST_VIDEO_FILTER_CLASS(type);
  filter->set_info = setInfo;
  filter->transform_frame = transformFrame;
}

gboolean registerElements(GstPlugin* plugin) {
  return gst_element_register(plugin, "lumvanehdr", GST_RANK_NONE, lumvane_hdr_get_type());
}

}  // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, lumvane, "Colour effects of Lumvane", registerElements,
                  PLUGIN_VERSION, "MIT/X11", "Lumvane", "Unknown package origin")
