// The commands, one source file each; the five of morphology share one.
#pragma once

namespace CLI {
class App;
}

namespace tools {

// Each adds its command, options and help to the program. main.cpp lists them.
void add_tour(CLI::App& app);
void add_edges(CLI::App& app);
void add_corners(CLI::App& app);
void add_distance(CLI::App& app);
void add_background(CLI::App& app);
void add_blur(CLI::App& app);
void add_sobel(CLI::App& app);
void add_laplace(CLI::App& app);
void add_morphology(CLI::App& app);
void add_pyramid(CLI::App& app);
void add_fill(CLI::App& app);
void add_regions(CLI::App& app);
void add_stats(CLI::App& app);
void add_diff(CLI::App& app);
void add_split(CLI::App& app);
void add_join(CLI::App& app);
void add_profile(CLI::App& app);
void add_motion(CLI::App& app);
void add_match(CLI::App& app);
void add_info(CLI::App& app);

}  // namespace tools
