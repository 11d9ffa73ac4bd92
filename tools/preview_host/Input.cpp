/// Which kind of input a path is.
#include "Input.h"

namespace preview_host {
namespace {

constexpr Size kPatternSize{1920, 1080};

/// Where an input comes from, its picture already read if it is one.
struct Source {
    std::string path;
    std::optional<Image> picture;
};

Source openSource(const std::string& path)
{
    const bool isPicture = !path.empty() && path != "-" && isPng(path);
    return {path, isPicture ? std::optional(readPng(path)) : std::nullopt};
}

Size frameSize(const Options& options, const Source& source)
{
    if (options.size)
        return *options.size;
    if (source.picture)
        return source.picture->size;
    if (source.path.empty())
        return kPatternSize;
    throw UsageError("raw frames need --size");
}

std::unique_ptr<Input> makeInput(const Source& source, const FrameLayout& layout, double rate)
{
    if (source.path.empty())
        return makePatternInput(layout, rate);
    if (!source.picture)
        return openRawInput(source.path, layout);
    if (source.picture->size != layout.size)
        throw UsageError(source.path + " is not of the frames' size");
    return makePictureInput(source.path, *source.picture, layout);
}

} // namespace

Inputs openInputs(const Options& options)
{
    const Source left = openSource(options.input);
    Inputs inputs;
    inputs.layout = makeLayout(options, frameSize(options, left));
    inputs.left = makeInput(left, inputs.layout, options.rate);
    if (!options.rightEye.empty())
        inputs.right = makeInput(openSource(options.rightEye), inputs.layout, options.rate);
    return inputs;
}

} // namespace preview_host
