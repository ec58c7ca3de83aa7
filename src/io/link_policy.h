#pragma once
/// Which data-integration link targets may be opened: a model file (".xml")
/// or a folder on this computer. Programs, shortcuts, scripts, network
/// shares, device names and web or other URL addresses are refused; the
/// shell then shows "ui.msg.di_link_blocked".
///
///   if (!io::isLinkTargetAllowed(link.path, modelFolder)) warn(io::kMsgDiLinkBlocked);

#include <filesystem>
#include <string_view>

namespace modelyne::io {

inline constexpr const char* kMsgDiLinkBlocked = "ui.msg.di_link_blocked";
/// English text of kMsgDiLinkBlocked.
inline constexpr const char* kMsgDiLinkBlockedText =
    "This link was not opened. A link may only open a model file (.xml) or a project folder "
    "on this computer; programs, shortcuts, network shares and web addresses are blocked.";

/// Whether `target` may be opened. A relative path is taken from `baseDir`
/// (the model file's folder). A ".xml" path (any case) is allowed by name;
/// any other path only when it names an existing folder.
bool isLinkTargetAllowed(std::string_view target, const std::filesystem::path& baseDir = {});

}  // namespace modelyne::io
