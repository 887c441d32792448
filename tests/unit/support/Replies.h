#pragma once

#include <QString>

// Messages of the service that several tests expect, spelled out in one place.

/// What stands under "Result" in a reply; empty when it is none.
QString resultOf(const QString &reply);

/// The reply to GetWPSSettings; the name as it stands inside the nested text.
QString settingsReply(const char *width, const char *autoFit, const char *dateTime, const QString &name);

/// The key event message, which is also the reply to GetDeviceConfirmOrCancelKeyStatus.
QString keyMessage(int event);

/// The message with one picture, which is also the reply to GetInks.
QString imageMessage(const QString &image, int length);
