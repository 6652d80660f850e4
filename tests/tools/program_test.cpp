// The commands background and info, and every mistake a user can make with them.
#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "run_program.h"

namespace tools::test {
namespace {

using Strings = std::vector<std::string>;

class Background : public ProgramTest {};

TEST_F(Background, MeanAndVarianceOfFrames) {
  Strings arguments = {"background", path("mean.png"), "--variance", path("variance.png")};
  for (const int grey : {10, 20, 30, 40}) {  // the second pixel stands still, the third leaps
    const std::string name = std::to_string(grey) + ".png";
    arguments.push_back(
        write_grey(name, {3, 1}, {uint8_t(grey), 77, uint8_t(grey == 40 ? 255 : 1)}));
  }
  const Outcome outcome = run(arguments);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(read_grey("mean.png"), (std::vector<uint8_t>{25, 77, 65}));  // 64.5 rounds up
  EXPECT_EQ(read_grey("variance.png"), (std::vector<uint8_t>{125, 0, 255}));
  EXPECT_EQ(outcome.err, "");  // progress is for terminals
}

TEST_F(Background, ManyFramesLoseNothing) {
  // Squares of 1201 frames exceed what single precision holds exactly.
  const std::string even = write_grey("even.png", {2, 1}, {255, 251});
  const std::string odd = write_grey("odd.png", {2, 1}, {251, 251});
  Strings arguments = {"background", path("mean.png"), "--variance", path("variance.png"), even};
  for (int i = 0; i < 600; ++i) {
    arguments.push_back(even);
    arguments.push_back(odd);
  }
  const Outcome outcome = run(arguments);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(read_grey("mean.png"), (std::vector<uint8_t>{253, 251}));
  EXPECT_EQ(read_grey("variance.png"), (std::vector<uint8_t>{4, 0}));
}

TEST_F(Background, ProgressIsForTerminals) {
  const std::string frame = write_grey("frame.png", {2, 1}, {1, 2});
  const auto on_terminal = [&](const std::string& option) {
    return run_bash("script -qec \"'" NUQI_PROGRAM "' background '" + path("mean.png") + "' '" +
                    frame + "' '" + frame + "' " + option + "\" /dev/null")
        .out;
  };
  EXPECT_NE(on_terminal("").find("] 2 of 2 frames"), std::string::npos);
  EXPECT_EQ(on_terminal("--quiet"), "");
}

TEST_F(Background, ExponentialAverageStartsAsTheFirstFrame) {
  const std::string low = write_grey("low.png", {2, 1}, {100, 60});
  const std::string high = write_grey("high.png", {2, 1}, {116, 60});
  ASSERT_EQ(run({"background", path("mean.png"), low, high, high, "--alpha", "0.5", "--variance",
                 path("variance.png")})
                .code,
            0);
  EXPECT_EQ(read_grey("mean.png"), (std::vector<uint8_t>{112, 60}));
  EXPECT_EQ(read_grey("variance.png"), (std::vector<uint8_t>{48, 0}));  // 1/4 of 12^2, 3/4 of 4^2
}

TEST_F(Background, FramesMustBeOfOneSize) {
  const std::string a = write_grey("a.png", {2, 1}, {1, 2});
  const std::string b = write_grey("b.png", {1, 2}, {1, 2});
  const Outcome outcome = run({"background", path("mean.png"), a, b});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err, "nuqi: " + b + ": is 1x2, but " + a + " is 2x1\n");
  EXPECT_FALSE(std::filesystem::exists(path("mean.png")));
}

class Mistakes : public ProgramTest {};

TEST_F(Mistakes, FilesThatAreNoPictures) {
  const std::string good = write_grey("good.png", {2, 2}, {1, 2, 3, 4});
  write_text("text.png", "This is no picture.\n");
  write_text("empty.jpg", "");
  write_text("floats.pfm", "Pf\n1 1\n-1.0\n\1\2\3\4");
  write_text("cut.png", read_text("good.png").substr(0, 40));
  write_text("cut.jpg", "\xFF\xD8\xFF\xE0");
  write_text("cut.pgm", "P5 2 2 255\n123");
  const std::vector<std::pair<std::string, std::string>> files = {
      {"text.png", "neither a PNG nor a JPEG nor a PNM"},
      {"empty.jpg", "is empty"},
      {"floats.pfm", "neither a PNG nor a JPEG nor a PNM"},
      {"cut.png", "broken PNG"},
      {"cut.jpg", "broken JPEG"},
      {"cut.pgm", "broken PNM"},
      {"missing.png", "No such file"},
      {"", "Is a directory"}};
  for (const auto& [name, reason] : files) {
    expect_refused({"edges", path(name), path("out.png")}, {path(name), reason});
    expect_refused({"background", path("out.png"), path(name)}, {path(name), reason});
    expect_refused({"tour", path(name), "--out", path("page")}, {path(name), reason});
  }
  EXPECT_FALSE(std::filesystem::exists(path("out.png")));
  EXPECT_FALSE(std::filesystem::exists(path("page")));
}

TEST_F(Mistakes, OutputsThatCannotBeWritten) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4});
  std::filesystem::create_directory(path("folder.png"));
  expect_refused({"edges", in, path("none/out.png")}, {"none/out.png", "no folder", "none"});
  expect_refused({"edges", in, path("folder.png")}, {"folder.png", "Is a directory"});
  expect_refused({"edges", in, path("out.gif")}, {"out.gif", ".png"});
  expect_refused({"background", path("out"), in}, {"/out:", ".png"});
  expect_refused({"background", path("out.png"), in, "--variance", path("v.tif")}, {"v.tif"});
  expect_refused({"tour", in, "--out", in}, {"in.png", "folder"});
}

TEST_F(Mistakes, Arguments) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  expect_refused({}, {"nuqi --help"});
  expect_refused({"fly"}, {"fly"});
  expect_refused({"edges", in}, {"OUT"});
  expect_refused({"edges", in, out, "--operator", "roberts"}, {"roberts"});
  expect_refused({"edges", in, out, "--low", "many"}, {"many"});
  expect_refused({"edges", in, out, "--low", "-0.5"}, {"--low"});
  expect_refused({"edges", in, out, "--low", "nan"}, {"--low"});
  expect_refused({"edges", in, out, "--low", "300", "--high", "200"}, {"--high"});
  expect_refused({"edges", in, out, "--high", "nan"}, {"--high:"});
  expect_refused({"background", out, in, "--alpha", "0"}, {"--alpha"});
  expect_refused({"background", out, in, "--alpha", "1.5"}, {"--alpha"});
  expect_refused({"background", out}, {"FRAME"});
  expect_refused({"background", out, ""}, {"FRAME", "must not be empty"});
  expect_refused({"background", out, in, "--variance", ""}, {"--variance", "must not be empty"});
  expect_refused({"stats", in, "--bins", "3.5"}, {"--bins: 3.5 is no whole number"});
  expect_refused({"stats", in, "--bins", "16x"}, {"--bins: 16x is no whole number"});
  expect_refused({"corners", in, out, "--distance", "far"}, {"--distance: far is no number"});
}

TEST_F(Mistakes, NamesAreSuggested) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  expect_refused({"edgse", in, out},
                 {"edgse: is no command", "do you mean edges?", "`nuqi --help`"});
  expect_refused({"help", "dilat"}, {"dilat: is no command", "do you mean dilate?"});
  const Outcome strange = run({"photosynthesis"});
  EXPECT_EQ(strange.code, 2);
  EXPECT_EQ(strange.err.find("do you mean"), std::string::npos) << strange.err;
  // Also where the mistake makes another argument seem to be missing.
  for (const Strings& rest : {Strings{in, out, "--hihg", "9"}, {in, "--hihg=9", out}, {"--hihg"}}) {
    Strings arguments = {"edges"};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    expect_refused(arguments, {"--hihg: is no option of `nuqi edges`", "do you mean --high?",
                               "`nuqi edges --help`"});
  }
  expect_refused({"blur", in, out, "--iso", "sse2"}, {"do you mean --isa?"});
  expect_refused({"--quite", "info"}, {"--quite: is no option", "do you mean --quiet?"});
  expect_refused({"blur", in, out, "more"}, {"more: is one argument too many", "nuqi blur --help"});
  expect_refused({"blur", in}, {"OUT", "`nuqi blur --help`"});
  EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(Mistakes, FilesMayBeNamedLikeCommands) {
  const std::filesystem::path before = std::filesystem::current_path();
  write_grey("in.png", {2, 2}, {1, 2, 3, 4});
  std::filesystem::current_path(path("."));
  std::filesystem::rename("in.png", "edges");
  const Outcome outcome = run({"blur", "edges", "out.png"});
  std::filesystem::current_path(before);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
}

TEST_F(Mistakes, QuietLeavesOnlyThem) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  const Outcome done = run({"blur", in, out, "--quiet"});
  EXPECT_EQ(done.code, 0);
  EXPECT_EQ(done.out + done.err, "");
  expect_refused({"--quiet", "blur", path("none.png"), out}, {"none.png"});
  EXPECT_NE(run({"--quiet", "stats", in}).out, "");  // its result
}

class Info : public ProgramTest {};

TEST_F(Info, ListsTheHeadersFunctions) {
  std::ifstream header(NUQI_HEADER);
  const std::string info = run({"info", "--names"}).out;
  int functions = 0;
  for (std::string line; std::getline(header, line);) {
    if (line.rfind("NUQI_API ", 0) != 0) continue;
    ++functions;
    const size_t begin = line.find("nuqi"), end = line.find('(');
    const std::string name = line.substr(begin, end - begin);
    EXPECT_NE(info.find(" " + name + "\n"), std::string::npos) << name;
  }
  EXPECT_GT(functions, 0);
  EXPECT_NE(info.find("functions        " + std::to_string(functions) + "\n"), std::string::npos);
  EXPECT_NE(info.find("  24  Accumulation\n"), std::string::npos) << info;
}

TEST_F(Info, HelpAndVersionSucceed) {
  for (const char* command :
       {"tour",    "help",    "edges",   "corners", "distance", "background", "blur",
        "sobel",   "laplace", "erode",   "dilate",  "open",     "close",      "gradient",
        "pyramid", "fill",    "regions", "stats",   "diff",     "split",      "join",
        "profile", "motion",  "match",   "info"}) {
    const Outcome outcome = run({command, "--help"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find(command), std::string::npos);
    EXPECT_EQ(run({"help", command}).out, outcome.out);
  }
  EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
  EXPECT_NE(run({"--help"}).out.find("Exit codes: 0 success, 2 "), std::string::npos);
  EXPECT_EQ(run({"--version"}).out, "0.1.0\n");
}

// The commands as the program's help lists them, each with its long options.
std::map<std::string, std::set<std::string>> listed(
    const std::string& help, const std::function<std::string(std::string)>& of) {
  std::map<std::string, std::set<std::string>> commands;
  std::istringstream lines(help.substr(help.find("\nSubcommands:\n") + 14));
  const std::regex option("--[a-z0-9-]+");
  for (std::string line, name; std::getline(lines, line);) {
    if (line.compare(0, 2, "  ") != 0 || line[2] == ' ') continue;
    std::istringstream(line) >> name;
    const std::string text = of(name);
    const std::string options = text.substr(0, text.find("\n\n", text.find("Options:")));
    for (std::sregex_iterator it(options.begin(), options.end(), option), end; it != end; ++it) {
      commands[name].insert(it->str());
    }
  }
  return commands;
}

TEST_F(Info, ManualAndCompletionHoldEveryCommandAndOption) {
  const auto commands = listed(run({"--help"}).out, [&](const std::string& name) {
    return run({name, "--help"}).out;
  });
  EXPECT_GE(commands.size(), 24u);
  std::string manual = run({"help", "--man"}).out;
  manual = std::regex_replace(manual, std::regex("\\\\-"), "-");
  write_text("nuqi.bash", run({"help", "--bash"}).out);
  const auto completed = [&](const std::string& words, const std::string& last) {
    const Outcome outcome =
        run_bash("source '" + path("nuqi.bash") + "'; COMP_WORDS=(nuqi " + words + " '" + last +
                 "'); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _nuqi; echo \" ${COMPREPLY[*]} \"");
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
  };
  for (const auto& [name, options] : commands) {
    const size_t begin = manual.find("\n.SS " + name + "\n");
    ASSERT_NE(begin, std::string::npos) << name;
    const std::string section = manual.substr(begin + 1, manual.find("\n.SS ", begin + 1) - begin);
    const std::string words = completed(name, "--");
    EXPECT_FALSE(options.empty()) << name;
    for (const std::string& option : options) {
      EXPECT_NE(section.find(option), std::string::npos) << name << " " << option;
      EXPECT_NE(words.find(" " + option + " "), std::string::npos) << name << " " << option;
    }
  }
  EXPECT_EQ(completed("", "ed"), " edges \n");
  EXPECT_EQ(completed("edges in.png out.png --operator", "s"), " sobel scharr \n");
  EXPECT_EQ(completed("--isa sse2 help", "erod"), " erode \n");
}

}  // namespace
}  // namespace tools::test
