#pragma once

#include "device/SignObjManager.h"
#include "tests/sdk/recording/Recorder.h"
#include "tests/sdk/support/Models.h"

#include <QString>

#include <map>
#include <string>
#include <vector>

/// A call that has to reach the library ("MV*" and "ID" stand for the model's own, see spelledFor) and its answer.
struct Step {
    const char *call;
    recording::Answer answer;
};

/// What an operation does: the calls that reach the library, one after another, and its reply spelled as text
/// ("void", "true", "-1", texts in quotes).
struct Outcome {
    std::vector<Step> steps;
    const char *reply;
};

/// One of the 32 pad operations with example arguments, and everything it can come to.
struct Operation {
    using Manager = SignObjManager;
    using Pad = SignObjInterface;

    const char *name;
    std::function<QString(Manager &, int nDeviceID)> onManager;
    std::function<QString(Pad &, int nDeviceID)> onPad;
    const char *models;        ///< letters of the models that have it
    Outcome complete;          ///< with the complete library
    const char *withoutObject; ///< reply of a manager that holds no pad
    const char *withoutSdk;    ///< reply of a model that has it, without any library
    const char *base;          ///< reply of a model that lacks it
    /// What it comes to when one name of the library is missing, where that is not "no call, reply as without SDK".
    std::map<std::string, Outcome> without;

    bool belongsTo(const Model &model) const;
    /// What it comes to on a model when the library lacks one name ("" when it is complete).
    Outcome outcome(const Model &model, const std::string &missing = {}) const;
};

/// The 32 operations in the order of the interface.
const std::vector<Operation> &allOperations();
