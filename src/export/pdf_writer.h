#pragma once
/// One-page PDF 1.4 around a JPEG picture: five objects (catalog, page tree,
/// page, image, content stream) and a cross-reference table of their byte
/// positions. The JPEG bytes go in unchanged; nothing else is drawn. Returns
/// the bytes; the caller writes the file.
///
///   std::string pdf = pdfDocument(jpeg, 800, 600, 800 * 0.75, 600 * 0.75);

#include <cstdint>
#include <string>
#include <string_view>

namespace modelyne::exporter {

/// The PDF bytes. `jpeg` is a complete baseline JPEG with 8-bit RGB samples of
/// `pixelWidth` x `pixelHeight`; the page is `pageWidth` x `pageHeight` points.
std::string pdfDocument(std::string_view jpeg, std::uint32_t pixelWidth, std::uint32_t pixelHeight,
                        double pageWidth, double pageHeight);

}  // namespace modelyne::exporter
