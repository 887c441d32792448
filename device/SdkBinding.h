// Binding of one model's function family to the maker's library.
#pragma once

#include "sdk/SdkFunctions.h"

#include <QLibrary>

#include <memory>

/// A resolved function of the library and the name it goes by in the log.
template <class Pointer>
struct SdkFunction {
    const char *szName;
    Pointer pfn; ///< null when the library lacks it
};
template <class Pointer>
SdkFunction(const char *, Pointer) -> SdkFunction<Pointer>;

/// Defines the struct <Model>Sdk: the model's constants, the library, and for each row of the model's column one
/// member m_pfn_MV<Model>_<Function> (null until resolved) and one accessor fn<Function>(), by which the operations
/// shared by all models reach it. An operation that a model's library lacks does not compile for that model.
#define MV_DEFINE_SDK_BINDING(Model, DeviceID)                                                                         \
    struct Model##Sdk {                                                                                                \
        static constexpr int nDeviceID = DeviceID; /* first argument of every call */                                  \
        static constexpr const char *szClassName = "SignObj" #Model;                                                   \
                                                                                                                       \
        std::unique_ptr<QLibrary> m_pSDKLibrary;                                                                       \
        MV_SDK_FUNCTIONS(MV_SDK_MEMBER, Model)                                                                         \
                                                                                                                       \
        /* Calls visit(full name, pointer) for every function, in resolve order. */                                    \
        template <class Visitor>                                                                                       \
        void ForEachFunction(Visitor visit)                                                                            \
        {                                                                                                              \
            MV_SDK_FUNCTIONS(MV_SDK_VISIT, Model)                                                                      \
        }                                                                                                              \
    };

#define MV_SDK_MEMBER(Model, name, result, parameters, ...)                                                            \
    MV_SDK_IF_MODEL_HAS(                                                                                               \
        Model, __VA_ARGS__, result(*m_pfn_MV##Model##_##name) parameters = nullptr; auto fn##name() const {            \
            return SdkFunction{"MV" #Model "_" #name, m_pfn_MV##Model##_##name};                                       \
        })

#define MV_SDK_VISIT(Model, name, result, parameters, ...)                                                             \
    MV_SDK_IF_MODEL_HAS(Model, __VA_ARGS__, visit("MV" #Model "_" #name, m_pfn_MV##Model##_##name);)

MV_SDK_MODELS(MV_DEFINE_SDK_BINDING)
