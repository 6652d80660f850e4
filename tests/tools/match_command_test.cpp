// The command match on pictures that hold their template once, or more often.
#include <cmath>
#include <cstdio>

#include "pictures/template_match.h"
#include "run_program.h"

namespace tools::test {
namespace {

constexpr RoiSize kSize{70, 50}, kPiece{9, 7};

std::vector<uint8_t> noise(RoiSize size, uint32_t state) {
  std::vector<uint8_t> pixels;
  for (int i = 0; i < size.width * size.height; ++i)
    pixels.push_back(uint8_t((state = state * 1664525u + 1013904223u) >> 24));
  return pixels;
}

struct Found {
  int x = -1, y = -1;
  double score = NAN;
};

class Match : public ProgramTest {
 protected:
  // A picture of noise, and the template that stands in it at (31, 22).
  Match() {
    for (int y = 0; y < kPiece.height; ++y)
      for (int x = 0; x < kPiece.width; ++x)
        piece_.push_back(picture_[size_t((22 + y) * kSize.width + 31 + x)]);
    write_grey("in.png", kSize, picture_);
    write_grey("piece.png", kPiece, piece_);
  }

  std::vector<Found> find(std::vector<std::string> options) const {
    options.insert(options.begin(), {"match", path("in.png"), path("piece.png"), path("out.png"),
                                     "--csv", path("list.csv")});
    const Outcome outcome = run(options);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    const std::string list = read_text("list.csv");
    EXPECT_EQ(list.find("x,y,score\n"), 0u);
    std::vector<Found> places;
    for (size_t at = list.find('\n') + 1; at < list.size(); at = list.find('\n', at) + 1) {
      Found found;
      EXPECT_EQ(std::sscanf(list.c_str() + at, "%d,%d,%lf", &found.x, &found.y, &found.score), 3);
      places.push_back(found);
    }
    return places;
  }

  std::vector<uint8_t> picture_ = noise(kSize, 1), piece_;
};

TEST_F(Match, EveryMeasureScoresItsPlaceByItsFormula) {
  double products = 0, sum = 0;
  for (const uint8_t t : piece_) products += t * t, sum += t;
  const double spread = products - sum * sum / double(piece_.size());
  const std::pair<const char*, double> scores[] = {{"sqdiff", 0},
                                                   {"sqdiff-normed", 0},
                                                   {"corr-normed", 1},
                                                   {"coeff", spread},
                                                   {"coeff-normed", 1}};
  for (const auto& [measure, score] : scores) {
    const auto places = find({"--measure", measure});
    ASSERT_EQ(places.size(), 1u) << measure;
    EXPECT_EQ((std::pair{places[0].x, places[0].y}), (std::pair{31, 22})) << measure;
    EXPECT_NEAR(places[0].score, score, 1e-6 * std::max(1.0, score)) << measure;
  }
  std::fill_n(picture_.begin(), kSize.width * 20, uint8_t{255});  // correlation likes it bright
  write_grey("in.png", kSize, picture_);
  const auto bright = find({"--measure", "corr"});
  EXPECT_EQ((std::pair{bright[0].x, bright[0].y}), (std::pair{0, 0}));
  EXPECT_EQ(bright[0].score, 255 * sum);
}

TEST_F(Match, TheBestPlacesDoNotOverlap) {
  for (const auto& [left, top] : {std::pair{31 + kPiece.width, 22}, {5, 40}})  // two copies more
    for (int y = 0; y < kPiece.height; ++y)
      std::copy_n(piece_.begin() + y * kPiece.width, kPiece.width,
                  picture_.begin() + (top + y) * kSize.width + left);
  write_grey("in.png", kSize, picture_);
  const auto places = find({"--top", "25", "--measure", "sqdiff"});
  ASSERT_GT(places.size(), 5u);
  EXPECT_EQ((std::pair{places[0].x, places[0].y}), (std::pair{31, 22}));
  EXPECT_EQ((std::pair{places[1].x, places[1].y}), (std::pair{40, 22}));
  EXPECT_EQ((std::pair{places[2].x, places[2].y}), (std::pair{5, 40}));
  EXPECT_EQ(places[2].score, 0);
  for (size_t i = 1; i < places.size(); ++i) {
    EXPECT_LE(places[i - 1].score, places[i].score);
    for (size_t k = 0; k < i; ++k)
      EXPECT_TRUE(std::abs(places[i].x - places[k].x) >= kPiece.width ||
                  std::abs(places[i].y - places[k].y) >= kPiece.height)
          << i << " " << k;
  }
}

TEST_F(Match, TheSheetHoldsThePictureItsBoxAndTheScores) {
  find({});
  const Picture sheet = read_picture(path("out.png"));
  EXPECT_EQ(sheet.size.width, 320);  // the scale needs it
  EXPECT_GT(sheet.size.height, 2 * kSize.height);
  const auto red = [&](int x, int y) { return sheet.pixels[size_t(3 * (y * 320 + x))]; };
  EXPECT_EQ(red(30, 21), 255);  // the box lies around the place
  EXPECT_EQ(red(40, 29), 255);
  for (int y = 22; y < 29; ++y)
    for (int x = 31; x < 40; ++x) EXPECT_EQ(red(x, y), picture_[size_t(y * kSize.width + x)]);
  // Only the best score is pale, in the middle of its place.
  std::vector<std::pair<int, int>> pale;
  for (int y = 0; y < kSize.height; ++y)
    for (int x = 0; x < kSize.width; ++x)
      if (red(x, kSize.height + 4 + y) == 255) pale.emplace_back(x, y);
  EXPECT_EQ(pale, (std::vector<std::pair<int, int>>{{31 + 4, 22 + 3}}));
}

TEST(ScoresOfATemplate, AreTheSameInBandsOfRows) {
  constexpr RoiSize size{40, 700}, piece{5, 60};  // several bands, the last one shorter
  Plane<uint8_t> picture(size), tpl(piece);
  picture.values = noise(size, 3);
  tpl.values = noise(piece, 4);
  for (const Measure& measure : kMeasures) {
    int32_t rows = 0, calls = 0;
    Stopwatch watch;
    const Plane<float> scores =
        scores_of(picture, tpl, measure, watch, [&](int32_t done, int32_t of) {
          EXPECT_GT(done, rows);
          EXPECT_EQ(of, 641);
          rows = done, ++calls;
        });
    EXPECT_EQ(rows, 641);
    EXPECT_GT(calls, 2);
    Plane<float> whole(scores.size);
    int32_t bytes = 0;
    ASSERT_EQ(measure.buffer_size(size, piece, 1, &bytes), StatusOk);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    ASSERT_EQ(measure.match(picture.data(), picture.step(), size, tpl.data(), tpl.step(), piece,
                            whole.data(), whole.step(), buffer.data()),
              StatusOk);
    EXPECT_EQ(scores.values, whole.values) << measure.name;
  }
}

TEST_F(Match, TheTemplateMayBeThePicture) {
  write_grey("in.png", kPiece, piece_);
  const auto places = find({"--top", "3"});
  ASSERT_EQ(places.size(), 1u);
  EXPECT_EQ(places[0].x, 0);
}

TEST_F(Match, Mistakes) {
  const std::string in = path("in.png"), tpl = path("piece.png"), out = path("out.png");
  expect_refused({"match", tpl, in, out}, {"in.png", "70x50", "9x7"});
  const std::string grey = write_grey("grey.png", {3, 2}, {9, 9, 9, 9, 9, 9});
  expect_refused({"match", in, grey, out}, {"grey.png", "one grey level", "coeff-normed"});
  expect_refused({"match", in, grey, out, "--measure", "coeff"}, {"grey.png", "one grey level"});
  const std::string black = write_grey("black.png", {1, 1}, {0});
  expect_refused({"match", in, black, out, "--measure", "corr"}, {"black.png", "black"});
  expect_refused({"match", in, tpl, out, "--measure", "cosine"}, {"--measure", "cosine"});
  expect_refused({"match", in, tpl, out, "--top", "0"}, {"--top"});
  expect_refused({"match", in, tpl, path("out.gif")}, {"out.gif", ".png"});
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace tools::test
