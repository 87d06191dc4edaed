# Builds the agent and the reader from the archive of the sources. Its syntax is checked; it HAS NOT BEEN TRIED with
# Homebrew. Before that, put the archive that cpack makes (quillagent-VERSION.tar.gz) where `url` can reach it and its
# `shasum -a 256` into `sha256`.
class Quillagent < Formula
  desc "Inventory of a Mac as one INV file, and the reader of such files"
  homepage "https://www.quillon.example"
  url "https://www.quillon.example/quillagent-15.11.18.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"

  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "nlohmann-json" => :build
  depends_on :macos

  uses_from_macos "zlib"

  def install
    system "cmake", "-S", ".", "-B", "build", "-DBUILD_TESTING=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    assert_match "Usage: quillagent", shell_output("#{bin}/quillagent --help")
    assert_equal "quillinv #{version}", shell_output("#{bin}/quillinv --version").strip
  end
end
