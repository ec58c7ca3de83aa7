#pragma once
/// One-page PDF 1.4 around a JPEG picture: five objects (catalog, page tree,
/// page, image, content stream) and a cross-reference table of their byte
/// positions. The JPEG bytes go in unchanged; nothing else is drawn.
///
///   exportPdf(path, jpeg, 800, 600, 800 * 0.75, 600 * 0.75);

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace modelyne::exporter {

/// The PDF bytes. `jpeg` is a complete baseline JPEG with 8-bit RGB samples of
/// `pixelWidth` x `pixelHeight`; the page is `pageWidth` x `pageHeight` points.
std::string pdfDocument(std::string_view jpeg, std::uint32_t pixelWidth, std::uint32_t pixelHeight,
                        double pageWidth, double pageHeight);

/// Writes `pdfDocument(...)` to `path` in one piece (temporary file, then
/// rename). On failure returns false and, when `error` is given, says why.
bool exportPdf(const std::filesystem::path& path, std::string_view jpeg, std::uint32_t pixelWidth,
               std::uint32_t pixelHeight, double pageWidth, double pageHeight,
               std::string* error = nullptr);

}  // namespace modelyne::exporter
