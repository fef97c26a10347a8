// write_random_recordings FOLDER SERVERS NIGHTS FIRST: ZIP files of made-up machines, each as its
// server sends it. Some nights are the same as the one before the last; FIRST begins the servers'
// numbers, on which all that they are depends.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "host/recording/recording_writer.h"
#include "tests/support/random_recording.h"

namespace {

constexpr int kNightsApart = 1000;  ///< seeds of two servers, more than anybody asks for nights

/// The night whose machine is seen again in `night`.
int ChooseLook(int night) { return night % 3 == 2 ? night - 2 : night; }

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) return EXIT_FAILURE;
  try {
    const std::filesystem::path folder = argv[1];
    const int servers = std::stoi(argv[2]);
    const int nights = std::stoi(argv[3]);
    const int first = std::stoi(argv[4]);
    const std::chrono::sys_days begin{std::chrono::year{2026} / 1 / 1};
    for (int server = first; server < first + servers; ++server) {
      for (int night = 0; night < nights; ++night) {
        host::Recording recording = test::MakeRandomRecording(
            static_cast<std::uint64_t>(server) * kNightsApart + ChooseLook(night));
        const std::string name = "srv-" + std::to_string(server);
        recording.submission = host::Submission{
            .name = name,
            .recordedAt = host::LocalTime{begin + std::chrono::days(night), std::chrono::hours(1)}};
        std::ofstream file(folder / (name + "_" + std::to_string(night) + ".zip"),
                           std::ios::binary);
        host::WriteZippedRecording(recording, file);
      }
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
