// The pad models that the virtual pad can be.
#pragma once

#include <QByteArray>

namespace virtualpad {

struct PadModel {
    const char *name;
    int deviceId;
    bool hasFingerprintSensor;
    bool hasWpsCanvas;

    QByteArray productName() const; ///< for example "Virtual Alder"
    QByteArray padId() const;       ///< for example "VP-ALDER-0002"
};

/// The model with the device ID, or null.
const PadModel *findPadModel(int deviceId);

constexpr char kPenId[] = "VPEN-0001";
constexpr int kVersionMajor = 1;
constexpr int kVersionMinor = 0;

QByteArray versionText();
QByteArray aboutText();

} // namespace virtualpad
