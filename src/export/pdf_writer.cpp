#include "export/pdf_writer.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace modelyne::exporter {

namespace {

/// "%.2f" with trailing zeros kept, as page sizes are written.
std::string points(double v) {
  char buf[512];
  const int n = std::snprintf(buf, sizeof buf, "%.2f", v);
  return std::string(buf, n < 0 ? 0 : std::min<std::size_t>(static_cast<std::size_t>(n), sizeof buf - 1));
}

}  // namespace

std::string pdfDocument(std::string_view jpeg, std::uint32_t pixelWidth, std::uint32_t pixelHeight,
                        double pageWidth, double pageHeight) {
  const std::string w = points(pageWidth);
  const std::string h = points(pageHeight);
  const std::string content = "q\n" + w + " 0 0 " + h + " 0 0 cm\n/Im0 Do\nQ\n";

  std::string out;
  out.reserve(jpeg.size() + 1024);
  std::array<std::size_t, 5> offsets{};
  out += "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";

  offsets[0] = out.size();
  out += "1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n";
  offsets[1] = out.size();
  out += "2 0 obj\n<< /Type /Pages /Kids [3 0 R] /Count 1 >>\nendobj\n";
  offsets[2] = out.size();
  out += "3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + w + " " + h +
         "] /Resources << /XObject << /Im0 4 0 R >> /ProcSet [/PDF /ImageC] >> /Contents 5 0 R >>\nendobj\n";
  offsets[3] = out.size();
  out += "4 0 obj\n<< /Type /XObject /Subtype /Image /Width " + std::to_string(pixelWidth) + " /Height " +
         std::to_string(pixelHeight) + " /ColorSpace /DeviceRGB /BitsPerComponent 8 /Filter /DCTDecode /Length " +
         std::to_string(jpeg.size()) + " >>\nstream\n";
  out += jpeg;
  out += "\nendstream\nendobj\n";
  offsets[4] = out.size();
  out += "5 0 obj\n<< /Length " + std::to_string(content.size()) + " >>\nstream\n" + content +
         "endstream\nendobj\n";

  const std::size_t xref = out.size();
  out += "xref\n0 6\n0000000000 65535 f \n";
  for (std::size_t off : offsets) {
    char line[32];
    std::snprintf(line, sizeof line, "%010zu 00000 n \n", off);
    out += line;
  }
  out += "trailer\n<< /Size 6 /Root 1 0 R >>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n";
  return out;
}

}  // namespace modelyne::exporter
