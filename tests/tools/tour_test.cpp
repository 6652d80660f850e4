// The tour's page: complete, and in need of nothing but itself.
#include <map>
#include <regex>
#include <set>

#include "run_program.h"
#include "sample_pictures.h"

namespace tools::test {
namespace {

Bytes from_base64(const std::string& text) {
  Bytes bytes;
  uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == '=') break;
    const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    bits = bits << 6 | uint32_t(std::string_view(digits).find(c));
    count += 6;
    if (count >= 8) bytes.push_back(uint8_t(bits >> (count -= 8)));
  }
  return bytes;
}

// The page without its pictures, which are counted and checked on the way.
struct Page {
  std::string text;
  std::vector<Picture> pictures;
};

Page page_of(const std::string& html) {
  const std::string prefix = "src=\"data:image/png;base64,";
  Page page;
  size_t at = 0;
  for (size_t found; (found = html.find(prefix, at)) != std::string::npos;) {
    page.text += html.substr(at, found - at) + "src=\"data:\"";
    const size_t begin = found + prefix.size(), end = html.find('"', begin);
    page.pictures.push_back(
        picture_of_bytes(from_base64(html.substr(begin, end - begin)), "a picture of the page"));
    at = end + 1;
  }
  page.text += html.substr(at);
  return page;
}

int count_of(const std::string& text, const std::string& part) {
  int count = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++count;
  return count;
}

class Tour : public ProgramTest {
 protected:
  Page run_tour(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {"tour", "--out", path("page")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Outcome outcome = run(all);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find(path("page/index.html")), std::string::npos) << outcome.out;
    const Page page = page_of(read_text("page/index.html"));
    return page;
  }

  // Made once for all tests.
  const Page& built_in_page() {
    static const Page page = run_tour({});
    return page;
  }
};

TEST_F(Tour, ThePageNeedsNothingElse) {
  const Page& page = built_in_page();
  for (const char* outside : {"http:", "https:", "//", "@import", "url(", "<script", "<iframe"}) {
    EXPECT_EQ(count_of(page.text, outside), 0) << outside;
  }
  EXPECT_EQ(count_of(page.text, "src="), count_of(page.text, "src=\"data:\""));
  EXPECT_EQ(count_of(page.text, "href="),
            count_of(page.text, "href=\"#") + count_of(page.text, "href=\"data:,\""));
}

TEST_F(Tour, ThePageShowsEachFamilyAndItsCalls) {
  const Page& page = built_in_page();
  for (const char* call : {"nuqiAdd_8u32f_C1IR",
                           "nuqiAddSquare_8u32f_C1IR",
                           "nuqiAddProduct_8u32f_C1IR",
                           "nuqiAddWeighted_8u32f_C1IR",
                           "nuqiAdd_8u32f_C1IMR",
                           "nuqiSobel3x3_Dx_8u16s_C1R",
                           "nuqiSobel3x3_Dy_8u16s_C1R",
                           "nuqiSobel3x3_D2x_8u16s_C1R",
                           "nuqiSobel3x3_D2y_8u16s_C1R",
                           "nuqiSobel3x3_DxDy_8u16s_C1R",
                           "nuqiScharr_Dx_8u16s_C1R",
                           "nuqiScharr_Dy_8u16s_C1R",
                           "nuqiCanny_16s8u_C1R",
                           "nuqiDistanceTransform_3x3_8u32f_C1R",
                           "nuqiDistanceTransform_5x5_8u32f_C1R",
                           "nuqiBlur_8u16s_C1R",
                           "nuqiPyrDown_Gauss5x5_8u_C3R",
                           "nuqiPyrUp_Gauss5x5_8u_C3R",
                           "nuqiSobel_8u16s_C1R",
                           "nuqiLaplace_8u16s_C1R",
                           "nuqiMean_StdDev_8u_C1R",
                           "nuqiMean_StdDev_8u_C1MR",
                           "nuqiMinMaxIndx_8u_C1R",
                           "nuqiNormDiff_Inf_8u_C1MR",
                           "nuqiNormRel_L2_8u_C1MR",
                           "nuqiCalcHist_8u_C1R",
                           "nuqiCalcHist_8u_C2R",
                           "nuqiAbsDiff_8u_C1R",
                           "nuqiUpdateMotionHistory_8u32f_C1IR",
                           "nuqibFastArctan_32f",
                           "nuqiCopy_8u_C3P3R",
                           "nuqiCopy_8u_P3C3R",
                           "nuqiSampleLine_8u_C3R",
                           "nuqiFloodFill_Grad4Con_8u_C1IR",
                           "nuqiMatchTemplate_SqDiff_8u32f_C1R",
                           "nuqiMatchTemplate_CoeffNormed_8u32f_C1R",
                           "nuqiErodeStrip_Rect_8u_C1R",
                           "nuqiErodeStrip_Cross_8u_C1R",
                           "nuqiErodeStrip_8u_C1R",
                           "nuqiDilateStrip_Rect_8u_C1R",
                           "nuqiDilateStrip_Cross_8u_C1R",
                           "nuqiDilateStrip_8u_C1R"}) {
    EXPECT_GE(count_of(page.text, std::string("<b>") + call + "</b>("), 1) << call;
  }
  EXPECT_EQ(count_of(page.text, "roi, 100.0f, 200.0f, buffer)"), 2);
  const int sections = count_of(page.text, "<section id=");
  EXPECT_GE(sections, 7);
  EXPECT_EQ(count_of(page.text, "class=\"before\""), sections);
  EXPECT_EQ(count_of(page.text, "<li><a href="), sections);
  EXPECT_EQ(count_of(page.text, "class=\"call\""), count_of(page.text, "median of "));
  EXPECT_NE(page.text.find("640x480"), std::string::npos);
  for (const Picture& picture : page.pictures) {  // no picture is of one colour only
    EXPECT_TRUE(picture.size.width == 640 || picture.size.width < 100) << picture.size.width;
    EXPECT_GT(std::set<uint8_t>(picture.pixels.begin(), picture.pixels.end()).size(), 1u);
  }
  EXPECT_GE(page.pictures.size(), 20u);
}

TEST_F(Tour, ThePageIsAccessible) {
  const std::string& text = built_in_page().text;
  EXPECT_NE(text.find("<html lang=\"en\">"), std::string::npos);
  EXPECT_EQ(count_of(text, "<img "), count_of(text, " alt=\"") - count_of(text, " alt=\"\""));
  EXPECT_EQ(count_of(text, "<h1>"), 1);
  const std::regex link("href=\"#([a-z]+)\"");
  for (std::sregex_iterator it(text.begin(), text.end(), link), end; it != end; ++it) {
    EXPECT_EQ(count_of(text, "id=\"" + (*it)[1].str() + "\""), 1) << (*it)[1];
  }
  std::map<std::string, int> open;
  const std::regex tag(
      "<(/?)(section|figure|figcaption|div|p|h[1-3]|ul|li|dl|pre|code|main|nav)\\b");
  for (std::sregex_iterator it(text.begin(), text.end(), tag), end; it != end; ++it) {
    open[(*it)[2]] += (*it)[1].length() == 0 ? 1 : -1;
  }
  for (const auto& [name, balance] : open) EXPECT_EQ(balance, 0) << name;
}

TEST_F(Tour, PicturesOfEverySize) {
  for (const RoiSize size : {RoiSize{1, 1}, {1, 40}, {300, 1}, {2500, 1300}}) {
    SCOPED_TRACE(size_text(size));
    const auto clear_corner = [](int x, int y) { return Rgba{x, y, 9, x + y < 2 ? 0 : 255}; };
    const Bytes png = png_of({"", 6, 8}, size, clear_corner);
    write_text("a<b>&.png", std::string(png.begin(), png.end()));
    const Page page = run_tour({path("a<b>&.png")});
    EXPECT_NE(page.text.find("a&lt;b&gt;&amp;.png"), std::string::npos);
    EXPECT_NE(page.text.find(size_text(size)), std::string::npos);
    for (const Picture& picture : page.pictures) {
      EXPECT_LE(std::max(picture.size.width, picture.size.height), 800);
    }
  }
}

}  // namespace
}  // namespace tools::test
