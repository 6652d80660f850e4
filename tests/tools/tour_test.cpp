// The tour's page: complete, and in need of nothing but its folder.
#include <cstdlib>
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

// The page without its pictures, which are checked on the way: each is there once.
struct Page {
  std::string text;
  size_t bytes = 0;
  std::vector<Picture> pictures;
};

Page page_of(const std::string& html) {
  Page page{"", html.size(), {}};
  std::set<std::string> seen;
  size_t at = 0;
  for (size_t found; (found = html.find("data:image/", at)) != std::string::npos;) {
    const size_t begin = html.find(',', found) + 1, end = html.find_first_of("\")", begin);
    page.text += html.substr(at, found - at) + "data:image";
    const std::string base64 = html.substr(begin, end - begin);
    EXPECT_TRUE(seen.insert(base64).second);
    page.pictures.push_back(picture_of_bytes(from_base64(base64), "a picture of the page"));
    at = end;
  }
  page.text += html.substr(at);
  return page;
}

// What stands between `before` and `after`, everywhere.
std::vector<std::string> all_between(const std::string& text, const std::string& before,
                                     const std::string& after) {
  std::vector<std::string> parts;
  for (size_t at = 0; (at = text.find(before, at)) != std::string::npos;) {
    at += before.size();
    parts.push_back(text.substr(at, text.find(after, at) - at));
  }
  return parts;
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

TEST_F(Tour, ThePageNeedsNoNetworkAndOpensItsPicturesWhole) {
  const Page page = run_tour({});
  EXPECT_LT(page.bytes, 5000000u);
  for (const char* outside : {"http:", "https:", "@import", "<script", "<iframe"}) {
    EXPECT_EQ(count_of(page.text, outside), 0) << outside;
  }
  EXPECT_EQ(count_of(page.text, "src="), count_of(page.text, "src=\"data:image\""));
  EXPECT_EQ(count_of(page.text, "url("), count_of(page.text, "url(data:image)"));
  const auto links = all_between(page.text, "<a class=\"whole\" href=\"", ">");
  EXPECT_EQ(
      count_of(page.text, "href="),
      count_of(page.text, "href=\"#") + count_of(page.text, "href=\"data:,\"") + int(links.size()));
  std::set<std::string> names;
  for (const std::string& link : links) {
    const std::string name = link.substr(0, link.find('"'));
    names.insert(name);
    EXPECT_EQ(link,
              name + "\" title=\"" + size_text(read_picture(path("page/" + name)).size) + "\"");
  }
  EXPECT_GT(names.size(), 60u);
  EXPECT_EQ(names.size(), page.pictures.size());
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
  EXPECT_EQ(count_of(page.text, "roi, 100.0f, 200.0f, buffer)</code>"), 2);
  const int sections = count_of(page.text, "<section id=");
  EXPECT_GE(sections, 7);
  EXPECT_EQ(count_of(page.text, "class=\"before\""), sections);
  EXPECT_EQ(count_of(page.text, "<li><a href="), sections);
  EXPECT_EQ(count_of(page.text, "class=\"call\""), count_of(page.text, "median of "));
  EXPECT_NE(page.text.find("640x480"), std::string::npos);
  for (const char* remedy :
       {"Break the ties", "such pictures in stripes", "last boundary", "frees nothing"}) {
    EXPECT_GE(count_of(page.text, remedy), 1) << remedy;
  }
  for (const char* aperture :
       {"(width, 1, 5, &amp;state);", "(width, 1, 7, 0, 0, 1, &amp;state);"}) {
    EXPECT_GE(count_of(page.text, aperture), 2) << aperture;
  }
  EXPECT_GE(count_of(page.text, "× as fast as a plain loop"), 20);
  for (const Picture& picture : page.pictures) {  // no picture is of one colour only
    EXPECT_GT(std::set<uint8_t>(picture.pixels.begin(), picture.pixels.end()).size(), 1u);
  }
  EXPECT_GE(page.pictures.size(), 20u);
}

// All of them in one file, each under a name of its own.
TEST_F(Tour, ItsProgramsCompile) {
  const std::string begin = "<summary>Whole program</summary><pre><code>";
  const auto programs = all_between(built_in_page().text, begin, "</code>");
  EXPECT_GT(programs.size(), 60u);
  std::string source;
  for (size_t i = 0; i < programs.size(); ++i) {
    const std::string name = "int program" + std::to_string(i);
    source += std::regex_replace(programs[i], std::regex("int main"), name + "(void);\n" + name);
  }
  for (const auto& [entity, sign] : {std::pair{"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}})
    source = std::regex_replace(source, std::regex(entity), sign);
  write_text("programs.c", source);
  const std::string command = std::string(NUQI_COMPILER) +
                              " -x c -std=c99 -fsyntax-only -Wall -Wextra -Werror -I " NUQI_INCLUDE
                              " " +
                              path("programs.c") + " > " + path("said.txt") + " 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0) << read_text("said.txt");
}

TEST_F(Tour, ItsFolderIsTestedFirst) {
  write_text("file", "");
  expect_refused({"tour", "--out", path("file")}, {path("file"), "folder"});
  std::filesystem::create_directories(path("page/index.html"));
  expect_refused({"tour", "--out", path("page")}, {"page/index.html", "written"});
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
      "<(/"
      "?)(section|figure|figcaption|div|p|h[1-3]|ul|li|dl|pre|code|main|nav|a|span|details|summary)"
      "\\b");
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
      EXPECT_LE(std::max(picture.size.width, picture.size.height), 440);
    }
  }
}

}  // namespace
}  // namespace tools::test
