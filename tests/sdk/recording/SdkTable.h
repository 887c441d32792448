/// The C interface of the pad maker's library, as the recording SDK exports it. Written down apart from the
/// product's own table on purpose: a wrong row there has to fail here.
///
/// SDK_FUNCTION(name, result, (parameters), (arguments), Alder, Birch, Cedar, Maple, Rowan); x: the family has it.
/// `void *` receives an output, `char *` is a text given back, `const char *` and `const wchar_t *` are inputs.
// clang-format off
SDK_FUNCTION(InitialDevice, unsigned char, (int nID, void *pNull, int nZero1, int nZero2, int nWidth, int nHeight),
             (nID, pNull, nZero1, nZero2, nWidth, nHeight), x, x, x, x, x)
SDK_FUNCTION(UnInitialDevice, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(OpenLCD, int, (int nID, int bOpen),
             (nID, bOpen), x, x, x, _, _)
SDK_FUNCTION(Clear, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(GetHWPenID, int, (int nID, void *pBuf, int nSize),
             (nID, pBuf, nSize), x, x, x, _, _)
SDK_FUNCTION(GetHWPadID, int, (int nID, void *pBuf, int nSize),
             (nID, pBuf, nSize), x, x, x, x, x)
SDK_FUNCTION(GetHWVersion, int, (int nID, void *pBuf, int nSize),
             (nID, pBuf, nSize), x, x, x, x, x)
SDK_FUNCTION(DisplayHWVersion, int, (int nID, bool bShow),
             (nID, bShow), x, x, x, _, _)
SDK_FUNCTION(SetPenStyle, int, (int nID, bool bPressureOn),
             (nID, bPressureOn), x, x, x, x, x)
SDK_FUNCTION(SetPenWidth, int, (int nID, int nWidth),
             (nID, nWidth), x, x, x, x, x)
SDK_FUNCTION(SignPadEventCallback, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(GetTotalInkPointsNumber, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(GetInkPointData, int, (int nID, InkPoint *pPoint),
             (nID, pPoint), x, x, x, x, x)
SDK_FUNCTION(GetInkPointDataTimeInfo, char *, (int nID, int nIndex),
             (nID, nIndex), x, x, x, x, x)
SDK_FUNCTION(FreeInkPointDataTimeInfo, int, (int nID, char *pText),
             (nID, pText), x, x, x, x, x)
SDK_FUNCTION(SaveDrawingImage, int, (int nID, int nType, const wchar_t *pPath, int nDPI),
             (nID, nType, pPath, nDPI), x, x, x, x, x)
SDK_FUNCTION(SetSaveClipImageMargin, int, (int nID, int bEnable, int nWidth, int nHeight),
             (nID, bEnable, nWidth, nHeight), x, x, x, x, x)
SDK_FUNCTION(GetDeviceInfo, int, (int nID, int nType, void *pOut),
             (nID, nType, pOut), x, x, x, x, x)
SDK_FUNCTION(AboutBox, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(GetAboutInfo, int, (int nID, void *pBuf),
             (nID, pBuf), x, x, x, x, x)
SDK_FUNCTION(Base64Encode, char *, (int nID, int nType),
             (nID, nType), x, x, x, x, x)
SDK_FUNCTION(Base64EncodeFree, int, (int nID, char *pText),
             (nID, pText), x, x, x, x, x)
SDK_FUNCTION(Base64Decode, int, (int nID, int nType, const char *pData, const wchar_t *pPath),
             (nID, nType, pData, pPath), x, x, x, x, x)
SDK_FUNCTION(GetTotalDecodeInkPointsNumber, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(GetDecodeInkPointData, int, (int nID, int nIndex, int nField),
             (nID, nIndex, nField), x, x, x, x, x)
SDK_FUNCTION(SetPenColor, int, (int nID, int nR, int nG, int nB),
             (nID, nR, nG, nB), x, x, x, x, x)
SDK_FUNCTION(GetDeviceConfirmOrCancelKeyStatus, int, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(SetDisplayedFPImageAt, int, (int nID, void *pNull, int nCanvasWidth, int nCanvasHeight,
              int nLeft, int nTop, int nWidth, int nHeight),
             (nID, pNull, nCanvasWidth, nCanvasHeight, nLeft, nTop, nWidth, nHeight), _, _, x, _, _)
SDK_FUNCTION(GetFPImageBase64Data, char *, (int nID, int nType, int bFPImageOnly),
             (nID, nType, bFPImageOnly), _, _, x, _, _)
SDK_FUNCTION(FreeFPImageBase64Data, int, (int nID, char *pText),
             (nID, pText), _, _, x, _, _)
SDK_FUNCTION(GetSVGImageBase64Data, char *, (int nID),
             (nID), x, x, x, x, x)
SDK_FUNCTION(FreeSVGImageBase64Data, int, (int nID, char *pText),
             (nID, pText), x, x, x, x, x)
SDK_FUNCTION(SetRealTimeSignBase64DataCallback, unsigned char, (int nID, int nType, TextCallback pCallback),
             (nID, nType, pCallback), x, _, _, _, _)
SDK_FUNCTION(InitialWPSSignCanvas, unsigned char, (int nID, int nWidth, int nHeight),
             (nID, nWidth, nHeight), x, _, _, _, _)
SDK_FUNCTION(WPSBase64Encode, char *, (int nID, int nType),
             (nID, nType), x, _, _, _, _)
SDK_FUNCTION(WPSBase64EncodeFree, int, (int nID, char *pText),
             (nID, pText), x, _, _, _, _)
SDK_FUNCTION(Base64EncodeEx, char *, (int nID, int nType, int nOption),
             (nID, nType, nOption), x, x, x, x, x)
SDK_FUNCTION(Base64EncodeExFree, int, (int nID, char *pText),
             (nID, pText), x, x, x, x, x)
// clang-format on
