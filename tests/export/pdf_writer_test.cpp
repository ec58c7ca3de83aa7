// The PDF wrapper around a JPEG: exact text, byte offsets of the
// cross-reference table, and the image length.

#include <gtest/gtest.h>

#include <string>

#include "export/pdf_writer.h"
#include "export_tools.h"

namespace modelyne::exporter {
namespace {

TEST(PdfWriter, ExactTextOfAnEightHundredBySixHundredPicture) {
  const std::string jpeg = "\xFF\xD8JPEGDATA\xFF\xD9";  // 12 bytes; the wrapper never looks inside
  const std::string pdf = pdfDocument(jpeg, 800, 600, 800 * 0.75, 600 * 0.75);
  const std::string body =
      "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n"
      "1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n"
      "2 0 obj\n<< /Type /Pages /Kids [3 0 R] /Count 1 >>\nendobj\n"
      "3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600.00 450.00] /Resources << /XObject "
      "<< /Im0 4 0 R >> /ProcSet [/PDF /ImageC] >> /Contents 5 0 R >>\nendobj\n"
      "4 0 obj\n<< /Type /XObject /Subtype /Image /Width 800 /Height 600 /ColorSpace /DeviceRGB "
      "/BitsPerComponent 8 /Filter /DCTDecode /Length 12 >>\nstream\n" +
      jpeg +
      "\nendstream\nendobj\n"
      "5 0 obj\n<< /Length 37 >>\nstream\nq\n600.00 0 0 450.00 0 0 cm\n/Im0 Do\nQ\nendstream\nendobj\n";
  // Offsets counted by hand: header 15 bytes, then each object's length in turn.
  const std::string xref =
      "xref\n0 6\n"
      "0000000000 65535 f \n"
      "0000000015 00000 n \n"
      "0000000064 00000 n \n"
      "0000000121 00000 n \n"
      "0000000281 00000 n \n"
      "0000000459 00000 n \n"
      "trailer\n<< /Size 6 /Root 1 0 R >>\nstartxref\n" +
      std::to_string(body.size()) + "\n%%EOF\n";
  EXPECT_EQ(pdf, body + xref);
}

TEST(PdfWriter, OffsetsPointAtTheObjects) {
  const std::string jpeg(1000, '\x7F');
  const std::string pdf = pdfDocument(jpeg, 123, 45, 92.25, 33.75);
  const std::size_t xref = pdf.find("\nxref\n") + 1;
  ASSERT_NE(xref, std::string::npos);
  const std::size_t start = pdf.find("startxref\n");
  EXPECT_EQ(std::stoul(pdf.substr(start + 10)), xref);
  for (int obj = 1; obj <= 5; ++obj) {
    const std::size_t line = xref + 10 + 20 * static_cast<std::size_t>(obj);
    const std::size_t offset = std::stoul(pdf.substr(line, 10));
    EXPECT_EQ(pdf.compare(offset, 8, std::to_string(obj) + " 0 obj\n"), 0) << obj;
  }
  EXPECT_NE(pdf.find("/MediaBox [0 0 92.25 33.75]"), std::string::npos);
  EXPECT_NE(pdf.find("/Length 1000 >>\nstream\n" + jpeg + "\nendstream"), std::string::npos);
}

}  // namespace
}  // namespace modelyne::exporter
