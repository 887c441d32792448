#pragma once

#include <QByteArray>
#include <QMetaType>

#include <string>

/// The five pad models as a client knows them.
struct Model {
    const char *name;
    int nDeviceID;
    char letter;
};

inline constexpr Model allModels[] = {
    {"Alder", 2, 'A'}, {"Birch", 5, 'B'}, {"Cedar", 7, 'C'}, {"Maple", 3, 'M'}, {"Rowan", 4, 'R'},
};

/// A call as it is spelled for one model: "MV*_Clear(ID)" reads "MVBirch_Clear(5)" for Birch.
inline std::string spelledFor(const Model &model, const char *pattern)
{
    QByteArray call(pattern);
    call.replace("MV*", QByteArray("MV") + model.name);
    call.replace("(ID", '(' + QByteArray::number(model.nDeviceID));
    return call.toStdString();
}

Q_DECLARE_METATYPE(const Model *)
