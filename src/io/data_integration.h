#pragma once
/// The data-integration block inside a diagram XML text, and the legacy
/// sidecar file that older versions kept beside the model file.
///
///   <DataIntegration version="1">
///     <Link id="l1" type="project" path="C:/m/other.xml" label="Other"/>
///   </DataIntegration>
///
///   auto links = io::parseDataIntegration(xml);
///   io::insertDataIntegrationBlock(xml, links);   // nothing inserted for no links
///   auto side = io::sidecarPathFor("C:/m/a.XML");   // "C:/m/a.mllinks.xml"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/diagram_kind.h"

namespace modelyne::io {

/// Whether `xml` holds a "<DataIntegration" block.
bool hasDataIntegrationBlock(std::string_view xml);

/// Every "<Link" element inside the first data-integration block, in order.
std::vector<core::DataIntegrationLink> parseDataIntegration(std::string_view xml);

/// Every "<Link" element of a legacy sidecar file, in order (with or
/// without a surrounding block).
std::vector<core::DataIntegrationLink> parseSidecarLinks(std::string_view text);

/// The block text (indented two spaces, one line per link); empty for no links.
std::string dataIntegrationBlock(std::span<const core::DataIntegrationLink> links);

/// Removes an existing block, then, when there is at least one link, inserts
/// the block before the last "</diagram>" (nothing when there is none).
void insertDataIntegrationBlock(std::string& xml, std::span<const core::DataIntegrationLink> links);

/// The legacy sidecar of a model file: a ".xml" extension (any case) replaced
/// by ".mllinks.xml", or ".mllinks.xml" appended.
std::filesystem::path sidecarPathFor(const std::filesystem::path& modelPath);

}  // namespace modelyne::io
