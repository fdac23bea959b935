# Builds both programs from source. Version and digest are those of a tag's archive.
class Vellmark < Formula
  desc "Usage of coding agents' quotas in the menu bar and the terminal"
  homepage "https://vellmark.example/en/"
  url "https://vellmark.example/source/vellmark-0.1.0.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"
  license "MIT"

  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on "nlohmann-json" => :build
  depends_on "pkgconf" => :build
  depends_on "icu4c"
  depends_on macos: :ventura
  depends_on "qt"
  depends_on "re2"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DBUILD_TESTING=OFF",
           "-DVELLMARK_BENCHMARKS=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    prefix.install "build/bin/Vellmark.app"
    bin.install_symlink prefix/"Vellmark.app/Contents/Helpers/vellmark"
    man1.install Dir["build/man/man1/*"].reject { |page| page.include?("vellmark-desktop") }
    generate_completions_from_executable(bin/"vellmark", "completions")
  end

  test do
    assert_match version.to_s, shell_output("#{bin}/vellmark --version")
    assert_match "Claude", shell_output("#{bin}/vellmark --demo usage")
  end
end
