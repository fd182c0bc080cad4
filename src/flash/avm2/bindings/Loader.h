#pragma once

#include "flash/avm2/bindings/Display.h"

namespace flash::avm2
{

class Domain;

/// What is known of a movie or picture: of the main one, and of what a loader has got.
class LoaderInfoObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    LoaderInfoObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override;

    enum class Content : std::uint8_t { None, Movie, OldMovie, Picture };
    Content kind = Content::None;
    bool isStage = false;   ///< the one of the stage itself, which shows nothing
    bool isLoading = false; ///< bytes are there to be asked for
    DisplayObject *content = nullptr, *loader = nullptr;
    stage::MoviePtr movie;
    Value url = Value::null(), loaderUrl = Value::null(), contentType = Value::null();
    Value parameters, sharedEvents, errors, bytes;
    double loaded = 0, total = 0;
    Domain* domain = nullptr;
    int width = 0, height = 0; ///< of a picture
};

/// For the root of a movie that no loader has got.
LoaderInfoObject* newLoaderInfo(Vm& vm, std::string_view url);
/// The variables of an address.
Value queryParameters(Vm& vm, std::string_view url);
std::span<const NativeClass> loaderClasses();

/// What hears of errors that no script catches; made when it is first asked for.
Value errorEvents(Vm& vm, LoaderInfoObject& info);
/// Tells those who listen there of one. @returns whether they have prevented that anybody else hears of it
bool offerUncaught(Vm& vm, const LoaderInfoObject& info, Value error);

} // namespace flash::avm2
