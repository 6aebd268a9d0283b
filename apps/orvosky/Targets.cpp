#include "Targets.h"

#include "base/Letters.h"
#include "base/Messages.h"
#include "images/ImageCodec.h"
#include "viewport/Picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace orvosky {
namespace {

constexpr std::string_view kExtension = ".atmos";

bool isAtmosName(std::string_view target) {
    return target.size() > kExtension.size() && host::lowerCase(std::string(target)).ends_with(kExtension);
}

/// Says what the export command says; what is thrown says the rest.
Failure refused(const std::string& message, const std::string& rest) {
    host::showError(message);
    host::showError("Failed to export .atmos - see above for details.");
    return Failure(rest);
}

} // namespace

void requireExportTarget(const std::string& target) {
    if (!isAtmosName(target))
        throw refused("SaveSkySystemToXML: Error. Filename [" + target +
                          "] does not have required extention \".atmos\"\n",
                      "Nothing was exported to " + target + ".");
    try {
        host::base::requireReplaceable(target);
    } catch (const host::base::ReplacementError& e) {
        throw exportFailure(target, e);
    }
}

std::string cloudDataOf(const std::string& target) {
    return target.substr(0, target.size() - (kExtension.size() - 1)) + "cdata";
}

Failure exportFailure(const std::string& target, const host::base::ReplacementError& error) {
    const bool isRefused = error.kind() == host::base::ReplacementError::Kind::Refused;
    return refused(fmt::format("SaveSkySystemToXML:  Cannot {} {} file{}", isRefused ? "open" : "write",
                               error.file() == target ? "atmos" : "cdata", isRefused ? " for write" : ""),
                   fmt::format("Cannot write {}: {}.", error.file().string(), error.what()));
}

void requirePictureTarget(const std::string& picture, bool alpha) {
    if (host::extensionOf(picture) == ".dds") { // cube maps alone, which the codec does not write
        try {
            host::base::requireReplaceable(picture);
        } catch (const host::base::ReplacementError& e) {
            throw Failure(fmt::format("Cannot write picture \"{}\": {}.", picture, e.what()));
        }
        return;
    }
    if (const std::string reason = host::viewport::Picture::refusal(picture); !reason.empty())
        throw Failure(reason + ".");
    host::images::ImageCodec::Alpha kept{};
    if (alpha && host::images::imageCodec().canWrite(picture, kept) && kept == host::images::ImageCodec::Alpha::Dropped)
        throw Failure(fmt::format("Cannot write picture \"{}\": pictures of this format have no alpha.", picture));
}

} // namespace orvosky
