// A file that the program writes is whole, or what was there before.
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <map>
#include <thread>

#include "run_program.h"
#include "sample_pictures.h"

namespace tools::test {
namespace {

using Names = std::set<std::string>;

Rgba noise(int x, int y) {
  uint32_t bits = uint32_t(x + 1000 * y) * 2654435761u;
  bits = (bits ^ bits >> 15) * 2246822519u;
  return {int(bits >> 24), int(bits >> 16 & 255), int(bits >> 8 & 255), 255};
}

std::string text_of(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

class OutputFiles : public ProgramTest {
 protected:
  // Several strips high.
  static std::string png() { return text_of(png_of({"", 2, 8}, {50, 400}, noise)); }
  static std::string jpeg() { return text_of(jpeg_of(JpegKind::colour, {50, 400}, noise)); }
};

// While it lives, files written by this process and its children stay below a size.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
};

TEST_F(OutputFiles, ReadAsThePictureThatWasWritten) {
  for (const int channels : {1, 3, 4}) {
    Picture picture({37, 5}, channels);
    for (size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = uint8_t(100 + i / 8);
    for (size_t i = 3; channels == 4 && i < picture.pixels.size(); i += 4) {
      picture.pixels[i] = i % 8 == 3 ? 255 : 254;
    }
    write_picture(path("out.png"), picture);
    write_picture(path("out.jpg"), picture);
    write_picture(path("out.pnm"), picture);
    EXPECT_EQ(read_picture(path("out.png"), Form::stored).pixels, picture.pixels);
    EXPECT_EQ(read_picture(path("out.pnm")).pixels, read_picture(path("out.png")).pixels);
    EXPECT_EQ(read_picture(path("out.pnm"), Form::stored).channels, channels == 1 ? 1 : 3);
    const Picture jpeg = read_picture(path("out.jpg"));
    for (size_t i = 0; i < jpeg.pixels.size(); ++i) {
      const size_t at = channels == 1 ? i / 3 : i / 3 * size_t(channels) + i % 3;
      ASSERT_NEAR(int(jpeg.pixels[i]), int(picture.pixels[at]), 8) << channels;
    }
  }
}

TEST_F(OutputFiles, TruncatedInputChangesNothing) {
  for (const std::string in : {"in.png", "in.jpg"}) {
    const std::string file = in == "in.png" ? png() : jpeg();
    for (const size_t kept : {file.size() / 8, file.size() / 2, file.size() - 2}) {
      SCOPED_TRACE(in + ", " + std::to_string(kept) + " bytes");
      write_text(in, file.substr(0, kept));
      write_text("out.png", "old");
      for (const char* command : {"blur", "sobel", "laplace", "edges"}) {
        expect_refused({command, path(in), path("out.png")}, {path(in), "broken"});
        expect_refused({command, path(in), path("new.jpg")}, {path(in), "broken"});
      }
      expect_refused({"sobel", path(in), path("out.png"), "--range", "9"}, {path(in), "broken"});
      EXPECT_TRUE(read_text("out.png") == "old");
      std::filesystem::remove(path(in));
      EXPECT_EQ(files().size(), 1u);
    }
  }
}

TEST_F(OutputFiles, AFullDiskChangesNothing) {
  write_text("in.png", png());
  write_text("out.png", "old");
  {
    const FullDisk disk(4096);
    for (const char* command : {"blur", "sobel", "laplace"}) {
      for (const char* out : {"out.png", "new.png", "new.jpg"}) {
        expect_refused({command, path("in.png"), path(out)}, {out, "File too large"});
      }
    }
    expect_refused({"split", path("in.png"), path("out.png"), path("g.png"), path("b.png")},
                   {"out.png", "File too large"});
  }
  EXPECT_TRUE(read_text("out.png") == "old");
  EXPECT_EQ(files(), (Names{"in.png", "out.png"}));
}

TEST_F(OutputFiles, ASignalLeavesNothing) {
  write_text("out.png", "old");
  ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
  Outcome outcome;
  std::thread program([&] { outcome = run({"blur", path("pipe.png"), path("out.png")}); });
  {
    std::ofstream pipe(path("pipe.png"));
    const std::string picture = png();
    pipe << picture.substr(0, picture.size() / 2) << std::flush;
    std::string temporary;  // .nuqi-, the process, - and a number
    while (temporary.empty()) {
      for (const std::string& name : files()) {
        if (name.rfind(".nuqi-", 0) == 0) temporary = name;
      }
    }
    kill(pid_t(std::stol(temporary.substr(6))), SIGTERM);
    program.join();
  }
  EXPECT_EQ(outcome.code, -1);
  EXPECT_EQ(files(), (Names{"out.png", "pipe.png"}));
  EXPECT_EQ(read_text("out.png"), "old");
}

TEST_F(OutputFiles, MayBeTheInput) {
  write_text("in.png", png());
  ASSERT_EQ(run({"blur", path("in.png"), path("out.png")}).code, 0);
  ASSERT_EQ(run({"blur", path("in.png"), path("in.png")}).code, 0);
  EXPECT_TRUE(read_text("in.png") == read_text("out.png"));
  EXPECT_EQ(files(), (Names{"in.png", "out.png"}));
}

TEST_F(OutputFiles, DevicesAreWrittenDirectly) {
  write_text("in.png", png());
  std::filesystem::create_symlink("/dev/null", path("null.png"));
  std::filesystem::create_symlink("/dev/full", path("full.png"));
  std::filesystem::create_symlink("/dev/full", path("full.jpg"));
  EXPECT_EQ(run({"blur", path("in.png"), path("null.png")}).code, 0);
  for (const char* out : {"full.png", "full.jpg"}) {
    expect_refused({"blur", path("in.png"), path(out)}, {out, "No space left on device"});
  }
  EXPECT_EQ(files(), (Names{"in.png", "null.png", "full.png", "full.jpg"}));
  EXPECT_TRUE(std::filesystem::is_symlink(path("null.png")));
}

mode_t mode_of(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

TEST_F(OutputFiles, LinksStayAndModesToo) {
  write_text("in.png", png());
  std::filesystem::create_directory(path("folder"));
  write_text("folder/real.png", "old");
  chmod(path("folder/real.png").c_str(), 0640);
  std::filesystem::create_symlink("folder/real.png", path("near.png"));
  std::filesystem::create_symlink(path("near.png"), path("far.png"));
  std::filesystem::create_symlink("folder/later.png", path("dangling.png"));
  for (const char* out : {"far.png", "dangling.png"}) {
    const Outcome outcome = run({"blur", path("in.png"), path(out)});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(std::filesystem::is_symlink(path(out)));
  }
  EXPECT_EQ(read_picture(path("folder/real.png")).size.height, 400);
  EXPECT_EQ(mode_of(path("folder/real.png")), mode_t{0640});
  EXPECT_EQ(read_picture(path("folder/later.png")).size.height, 400);
  const mode_t mask = umask(0);
  umask(mask);
  EXPECT_EQ(mode_of(path("folder/later.png")), 0666 & ~mask);
  EXPECT_EQ(files(), (Names{"in.png", "folder", "near.png", "far.png", "dangling.png"}));
  std::filesystem::create_symlink("round.png", path("round.png"));
  expect_refused({"blur", path("in.png"), path("round.png")}, {"round.png", "symbolic links"});
}

TEST_F(OutputFiles, AFullDiskChangesNoPage) {
  ASSERT_EQ(run({"tour", "--out", path("page")}).code, 0);
  const std::string before = read_text("page/index.html");
  const FullDisk disk(100000);
  const Outcome outcome = run({"tour", "--out", path("page")});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_NE(outcome.err.find("File too large"), std::string::npos) << outcome.err;
  EXPECT_TRUE(read_text("page/index.html") == before);
}

TEST_F(OutputFiles, TwoOfOneNameAreRefused) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  std::filesystem::create_symlink("out.png", path("link.png"));
  const std::string again = path("./out.png");
  const std::string twice = "is named for two outputs";
  expect_refused({"split", in, out, path("g.png"), out}, {out, twice});
  expect_refused({"split", in, path("r.png"), out, again}, {again, twice});
  expect_refused({"background", out, in, "--variance", path("link.png")}, {"link.png", twice});
  expect_refused({"corners", in, out, "--csv", again}, {again, twice});
  expect_refused({"distance", in, out, "--float", out}, {out, twice});
  expect_refused({"fill", in, out, "0,0", "--region", out}, {out, twice});
  expect_refused({"regions", in, out, "--csv", out}, {out, twice});
  EXPECT_EQ(files(), (Names{"in.png", "link.png"}));
  std::filesystem::create_symlink("/dev/null", path("null.png"));
  EXPECT_EQ(run({"split", in, path("null.png"), path("null.png"), path("null.png")}).code, 0);
}

TEST_F(OutputFiles, StdoutThatTakesNothingIsAnError) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4});
  using Arguments = std::vector<std::string>;
  for (const Arguments& arguments : {Arguments{"stats", in},
                                     {"info"},
                                     {"--help"},
                                     {"--version"},
                                     {"blur", in, path("out.png")}}) {
    for (const char* way : {">/dev/full", ">&-"}) {
      const Outcome outcome = run_by_shell(arguments, way);
      EXPECT_EQ(outcome.code, 2) << arguments[0] << way;
      EXPECT_NE(outcome.err.find("standard output cannot be written"), std::string::npos)
          << outcome.err;
    }
  }
  // Nor is the report written into a picture that got stdout's number.
  EXPECT_EQ(read_grey("out.png").size(), 4u);
}

TEST_F(OutputFiles, StandardStreams) {
  write_text("in.png", png());
  ASSERT_EQ(run({"blur", path("in.png"), path("expected.png")}).code, 0);
  const Outcome piped =
      run_by_shell({"blur", "-", "-"}, "<" + path("in.png") + " >" + path("out.png"));
  ASSERT_EQ(piped.code, 0) << piped.err;
  EXPECT_NE(piped.err.find("means of 3x3 pixels"), std::string::npos) << piped.err;
  EXPECT_TRUE(read_text("out.png") == read_text("expected.png"));
  // Read twice, and through a pipe.
  ASSERT_EQ(
      run_by_shell({"sobel", "-", "-"}, "<" + path("in.png") + " | cat >" + path("out.png")).code,
      0);
  ASSERT_EQ(run({"sobel", path("in.png"), path("expected.png")}).code, 0);
  EXPECT_TRUE(read_text("out.png") == read_text("expected.png"));
  const std::string in = " <" + path("in.png");
  EXPECT_NE(run_by_shell({"diff", "-", "-", path("out.png")}, in).err.find("only once"),
            std::string::npos);
  expect_refused({"split", path("in.png"), "-", path("g.png"), "-"}, {"two outputs"});
  expect_refused({"stats", path("in.png"), "--histogram", "-"}, {"--histogram -"});
  expect_refused({"profile", path("in.png"), "0,0", "1,1", "--plot", "-"}, {"--plot -"});
  EXPECT_EQ(run_by_shell({"blur", path("in.png"), "-"}, ">/dev/full").code, 2);
}

TEST_F(OutputFiles, CompressionIsChosen) {
  write_text("in.png", png());
  std::map<std::string, size_t> sizes;
  for (const char* level : {"0", "1", "9"}) {
    ASSERT_EQ(run({"blur", path("in.png"), path("out.png"), "--compression", level}).code, 0);
    sizes[level] = read_text("out.png").size();
  }
  EXPECT_GT(sizes["0"], sizes["1"]);
  EXPECT_GT(sizes["1"], sizes["9"]);
  expect_refused({"blur", path("in.png"), path("out.png"), "--compression", "10"},
                 {"--compression"});
}

// What a command cannot keep of a picture, it says.
TEST_F(OutputFiles, NotesTellWhatIsLost) {
  const auto write = [&](const char* name, const PngKind& kind) {
    write_text(name, text_of(png_of(kind, {50, 40}, noise)));
    return path(name);
  };
  const std::string wide = write("wide.png", {"", 2, 16}), clear = write("clear.png", {"", 6, 8});
  const std::string plain = write("plain.png", {"", 2, 8}), out = path("out.png");
  EXPECT_NE(run({"sobel", wide, out}).err.find(wide + ": its 16 bits are rounded to 8\n"),
            std::string::npos);
  EXPECT_NE(run({"sobel", clear, out}).err.find(clear + ": its alpha is laid over white\n"),
            std::string::npos);
  EXPECT_NE(run({"erode", clear, path("out.jpg")}).err.find("JPEG keeps no alpha"),
            std::string::npos);
  EXPECT_EQ(run({"erode", clear, out}).err, "");
  EXPECT_EQ(run({"blur", plain, out}).err, "");
}

TEST_F(OutputFiles, GreyAndAlphaSurvive) {
  const std::string grey = write_grey("grey.png", {4, 4}, std::vector<uint8_t>(16, 77));
  const std::string out = path("out.png");
  using Arguments = std::vector<std::string>;
  for (const Arguments& arguments : {Arguments{"diff", grey, grey, out},
                                     {"fill", grey, out, "1,1"},
                                     {"pyramid", grey, out, "--levels", "1"},
                                     {"blur", grey, out},
                                     {"close", grey, out}}) {
    ASSERT_EQ(run(arguments).code, 0);
    EXPECT_EQ(read_picture(out, Form::stored).channels, 1) << arguments[0];
  }
  write_text("clear.png", text_of(png_of({"", 6, 8}, {3, 1}, [](int x, int) {
               return Rgba{10, 20, 30, 100 + x};
             })));
  const Outcome filled = run({"fill", path("clear.png"), out, "1,0", "--value", "5"});
  ASSERT_EQ(filled.code, 0) << filled.err;
  EXPECT_EQ(read_picture(out, Form::stored).pixels,
            (std::vector<uint8_t>{10, 20, 30, 100, 5, 5, 5, 101, 10, 20, 30, 102}));
}

TEST_F(OutputFiles, APipeIsReadOnce) {
  const std::string picture = png();
  write_text("in.png", picture);
  ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
  for (const char* command : {"blur", "sobel"}) {
    std::thread writer([&] { std::ofstream(path("pipe.png")) << picture; });
    const Outcome outcome = run({command, path("pipe.png"), path("out.png")});
    writer.join();
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    ASSERT_EQ(run({command, path("in.png"), path("expected.png")}).code, 0);
    EXPECT_TRUE(read_text("out.png") == read_text("expected.png"));
  }
}

}  // namespace
}  // namespace tools::test
