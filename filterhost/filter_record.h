// The published calling interface between a host and a filter plug-in (file type "8BFM") on 32-bit Windows:
// the record that every selector call carries, the procedures that the host offers, and the codes that both
// sides use. Fields keep their published names. Everything lies as plug-ins built by other compilers expect:
// packing 4, little-endian, plain C calls. Plug-ins can be written against this header alone.
#pragma once

#include "bvutil/api.h"

#include <cstdint>

#define PS_CALL BVUTIL_CALL

namespace ps {

using Boolean = std::uint8_t; // 0 false, anything else true
using Fixed = std::int32_t;   // 16.16 fixed point
using OSErr = std::int16_t;
using OSType = std::uint32_t; // four characters, the first in the most significant byte
using Ptr = char*;
using Handle = char**; // points to the pointer to the data; its storage belongs to whoever made it
using BufferID = void*;
using Str255 = std::uint8_t[256]; // a length byte, then the characters
using FilterColor = std::uint8_t[4];

constexpr OSType four_characters(const char (&text)[5]) {
    OSType code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<std::uint8_t>(text[i]);
    return code;
}

enum Selector : std::int16_t {
    selector_about = 0,
    selector_parameters = 1, // ask the user, keep the answers in `parameters`
    selector_prepare = 2,    // check them, announce memory needs
    selector_start = 3,      // ask for the first rectangles
    selector_continue = 4,   // work on what was handed out, ask for the next
    selector_finish = 5
};

enum ImageMode : std::int16_t { mode_grey = 1, mode_rgb = 3 };

// Result codes; a positive one means that the plug-in has told the user already (1: the user cancelled).
enum Result : std::int16_t {
    result_ok = 0,
    result_bad_parameter = -50,
    result_out_of_memory = -108,
    result_unknown_handle = -109,
    result_user_cancelled = -128,
    result_filter_bad_parameters = -30100,
    result_filter_bad_mode = -30101,
    result_host_insufficient = -30900
};

#pragma pack(push, 4)

// Vertical before horizontal, unlike the platform's POINT and RECT.
struct Point {
    std::int16_t v, h;
};
struct Rect {
    std::int16_t top, left, bottom, right; // bottom and right are exclusive
};
struct VRect {
    std::int32_t top, left, bottom, right;
};
struct RGBColor {
    std::uint16_t red, green, blue;
};
struct PlugInMonitor {
    Fixed gamma, redX, redY, greenX, greenY, blueX, blueY, whiteX, whiteY, ambient;
};
struct PlatformData {
    void* hwnd;
};

struct PSPixelMask {
    PSPixelMask* next;
    void* maskData;
    std::int32_t rowBytes;
    std::int32_t colBytes;
    std::int32_t maskDescription;
};
// What every version of the map begins with. Versions 1 and 2 append masks and overlays, which this host
// never reads.
struct PSPixelMap {
    std::int32_t version;
    VRect bounds;
    std::int32_t imageMode;
    std::int32_t rowBytes;
    std::int32_t colBytes;
    std::int32_t planeBytes;
    void* baseAddr;
};

using TestAbortProc = Boolean(PS_CALL*)();
using ProgressProc = void(PS_CALL*)(std::int32_t done, std::int32_t total);
using HostProc = void(PS_CALL*)(std::int16_t selector, std::int32_t* data);
using ProcessEventProc = void(PS_CALL*)(void* event);
using DisplayPixelsProc = OSErr(PS_CALL*)(const PSPixelMap* source, const VRect* srcRect, std::int32_t dstRow,
                                          std::int32_t dstCol, void* platformContext);
using AdvanceStateProc = OSErr(PS_CALL*)();

struct BufferProcs {
    std::int16_t bufferProcsVersion;
    std::int16_t numBufferProcs;
    OSErr(PS_CALL* allocateProc)(std::int32_t size, BufferID* buffer);
    Ptr(PS_CALL* lockProc)(BufferID buffer, Boolean moveHigh);
    void(PS_CALL* unlockProc)(BufferID buffer);
    void(PS_CALL* freeProc)(BufferID buffer);
    std::int32_t(PS_CALL* spaceProc)();
};

using HandleReleaseProc = void(PS_CALL*)(Handle handle);

struct HandleProcs {
    std::int16_t handleProcsVersion;
    std::int16_t numHandleProcs;
    Handle(PS_CALL* newProc)(std::int32_t size);
    HandleReleaseProc disposeProc;
    std::int32_t(PS_CALL* getSizeProc)(Handle handle);
    OSErr(PS_CALL* setSizeProc)(Handle handle, std::int32_t newSize);
    Ptr(PS_CALL* lockProc)(Handle handle, Boolean moveHigh);
    HandleReleaseProc unlockProc;
    void(PS_CALL* recoverSpaceProc)(std::int32_t size);
    HandleReleaseProc disposeRegularHandleProc; // releases a handle that the system made
};

// Services that this host does not offer; their pointers stay null.
struct ResourceProcs;
struct ImageServicesProcs;
struct PropertyProcs;
struct PIDescriptorParameters;
struct ChannelPortProcs;
struct ReadImageDocumentDesc;
struct SPBasicSuite;
struct BigDocumentStruct;
using GetPropertyProc = void*;
using ColorServicesProc = void*;

struct FilterRecord {
    std::int32_t serialNumber;
    TestAbortProc abortProc;
    ProgressProc progressProc;
    Handle parameters; // the plug-in's settings; null until it stores a handle here
    Point imageSize;
    std::int16_t planes;
    Rect filterRect; // the part of the image to be filtered
    RGBColor background;
    RGBColor foreground;
    std::int32_t maxSpace;    // bytes for data and buffers together
    std::int32_t bufferSpace; // bytes that the plug-in means to allocate, told at prepare

    // What the plug-in wants next: rectangles and inclusive plane ranges. An empty rectangle asks for
    // nothing.
    Rect inRect;
    std::int16_t inLoPlane;
    std::int16_t inHiPlane;
    Rect outRect;
    std::int16_t outLoPlane;
    std::int16_t outHiPlane;
    // What the host handed out: planes next to each other in each pixel. This host takes back, and frees,
    // what the data pointers hold at the next exchange.
    void* inData;
    std::int32_t inRowBytes;
    void* outData;
    std::int32_t outRowBytes;

    Boolean isFloating;
    Boolean haveMask;
    Boolean autoMask;
    Rect maskRect; // wanted next, as above; counts only with haveMask
    void* maskData;
    std::int32_t maskRowBytes;

    FilterColor backColor; // in the image's own colour space
    FilterColor foreColor;
    OSType hostSig;
    HostProc hostProc;
    std::int16_t imageMode;
    Fixed imageHRes; // pixels per inch
    Fixed imageVRes;
    Point floatCoord; // of a floating selection in the image below, whose size is wholeSize
    Point wholeSize;
    PlugInMonitor monitor;
    void* platformData; // points to a PlatformData: the window that owns the plug-in's dialogs
    BufferProcs* bufferProcs;
    ResourceProcs* resourceProcs;
    ProcessEventProc processEvent;
    DisplayPixelsProc displayPixels;
    HandleProcs* handleProcs;

    // From interface version 3.0 on.
    Boolean supportsDummyChannels;
    Boolean supportsAlternateLayouts;
    std::int16_t wantLayout;
    std::int16_t filterCase;
    std::int16_t dummyPlaneValue; // -1: dummy planes are not filled
    void* premiereHook;
    AdvanceStateProc advanceState; // serves the rectangles without a return from the selector call
    Boolean supportsAbsolute;
    Boolean wantsAbsolute;
    GetPropertyProc getPropertyObsolete;
    Boolean cannotUndo;
    Boolean supportsPadding;
    std::int16_t inputPadding;
    std::int16_t outputPadding;
    std::int16_t maskPadding;
    char samplingSupport;
    char reservedByte;
    Fixed inputRate;
    Fixed maskRate;
    ColorServicesProc colorServices;
    std::int16_t inLayerPlanes;
    std::int16_t inTransparencyMask;
    std::int16_t inLayerMasks;
    std::int16_t inInvertedLayerMasks;
    std::int16_t inNonLayerPlanes;
    std::int16_t outLayerPlanes;
    std::int16_t outTransparencyMask;
    std::int16_t outLayerMasks;
    std::int16_t outInvertedLayerMasks;
    std::int16_t outNonLayerPlanes;
    std::int16_t absLayerPlanes;
    std::int16_t absTransparencyMask;
    std::int16_t absLayerMasks;
    std::int16_t absInvertedLayerMasks;
    std::int16_t absNonLayerPlanes;
    std::int16_t inPreDummyPlanes;
    std::int16_t inPostDummyPlanes;
    std::int16_t outPreDummyPlanes;
    std::int16_t outPostDummyPlanes;
    std::int32_t inColumnBytes;
    std::int32_t inPlaneBytes;
    std::int32_t outColumnBytes;
    std::int32_t outPlaneBytes;

    // From 3.0.4 on.
    ImageServicesProcs* imageServicesProcs;
    PropertyProcs* propertyProcs;
    std::int16_t inTileHeight;
    std::int16_t inTileWidth;
    Point inTileOrigin;
    std::int16_t absTileHeight;
    std::int16_t absTileWidth;
    Point absTileOrigin;
    std::int16_t outTileHeight;
    std::int16_t outTileWidth;
    Point outTileOrigin;
    std::int16_t maskTileHeight;
    std::int16_t maskTileWidth;
    Point maskTileOrigin;

    // From 4.0 on.
    PIDescriptorParameters* descriptorParameters;
    Str255* errorString;
    ChannelPortProcs* channelPortProcs;
    ReadImageDocumentDesc* documentInfo;

    // From 5.0 on.
    SPBasicSuite* sSPBasic;
    void* plugInRef;
    std::int32_t depth; // bits per sample

    // From 6.0 to 8.0 on: left zero by this host, as is the rest.
    Handle iCCprofileData;
    std::int32_t iCCprofileSize;
    std::int32_t canUseICCProfiles;
    std::int32_t hasImageScrap;
    BigDocumentStruct* bigDocumentData;
    char reserved[46];
};

#pragma pack(pop)

static_assert(sizeof(FilterRecord) == 452, "the size that every version from 4.0 to 8.0 agrees on");

// What a plug-in exports, undecorated, under the name that its property list gives.
using EntryPoint = void(PS_CALL*)(std::int16_t selector, FilterRecord* record, std::int32_t* data,
                                  std::int16_t* result);

// Property lists: a plug-in carries them as resources of this type.
constexpr char property_list_type[] = "PIPL";
constexpr OSType kind_filter = four_characters("8BFM");

enum PropertyKey : OSType {
    property_kind = four_characters("kind"),
    property_version = four_characters("vers"),
    property_category = four_characters("catg"),
    property_name = four_characters("name"),
    property_entry_point = four_characters("wx86")
};

} // namespace ps
