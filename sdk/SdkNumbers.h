// The numbers of the library's C interface. Those that the service itself relies on are marked with *; what the others
// mean is the library's choice, and what stands here is the virtual pad's.
#pragma once

namespace sdk {

/// Types of pictures and of signature data: Base64Encode and its kin, SaveDrawingImage, Base64Decode.
enum ImageType {
    BmpImage = 1,
    TransparentPngImage = 2, ///< * the picture for WPS
    PngImage = 3,            ///< * the picture for everybody else; on white or transparent, as its function says
    JpegImage = 4,
    SvgImage = 5,
    InkData = 6, ///< * no picture: the points themselves
};

/// What GetDeviceInfo can tell. The form of each answer is fixed *.
enum InfoType {
    ConnectedInfo = 1,    ///< * flag
    LcdSizeInfo = 2,      ///< two ints: width and height in pad pixels
    SamplingInfo = 3,     ///< two ints: points per second, pad pixels per inch
    PressureInfo = 4,     ///< one int: the strongest pressure
    ProductInfo = 5,      ///< text
    SerialNumberInfo = 6, ///< text
    VersionInfo = 7,      ///< two ints: major and minor number
};

/// What GetDecodeInkPointData can tell about a decoded point *.
enum DecodeField { DecodedX = 1, DecodedY = 2, DecodedStrokeEnd = 3 };

/// The keys of the pad: what the key callback hears and GetDeviceConfirmOrCancelKeyStatus returns *.
enum KeyEvent { SIGNPAD_NO_BUTTON = -1, SIGNPAD_CANCEL_BUTTON = 0, SIGNPAD_ENTER_BUTTON = 1 };

/// Results of the functions that return a code.
enum ResultCode {
    Success = 0,          ///< * any other number is a failure
    NoSuchPad = -1,       ///< this device ID is not initialised, or the pad was unplugged
    BadArgument = -2,     ///< a value out of range, a null pointer, an unknown type
    PictureTooLarge = -3, ///< more pixels than the library makes
    BadData = -4,         ///< the text to decode is no base64, or no ink data
    CannotWrite = -5,     ///< the file cannot be written
};

/// What the buffers hold into which the library writes a text with its NUL *.
constexpr int IdentifierBufferBytes = 32; ///< of the pen, the pad and the version; the library is told
constexpr int AboutBufferBytes = 256;
constexpr int InfoBufferBytes = 256; ///< of GetDeviceInfo

} // namespace sdk
