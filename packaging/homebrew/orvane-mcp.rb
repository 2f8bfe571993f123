# The formula of the Homebrew tap. `url` and `sha256` name the source archive of a release: both are placeholders here,
# which Homebrew refuses, and script/release-macos writes a copy that has them filled in.
class OrvaneMcp < Formula
  desc "Model Context Protocol server for the Orvane voice application"
  homepage "@HOMEPAGE@"
  url "@URL@"
  sha256 "@SHA256@"

  depends_on "boost" => :build
  depends_on "cmake" => :build
  depends_on macos: :ventura
  depends_on "utf8proc"

  def install
    system "cmake", "-S", ".", "-B", "build", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build", "--component", "program"
  end

  test do
    request = '{"jsonrpc":"2.0","id":1,"method":"ping"}'
    assert_match '"result":{}', pipe_output(bin/"orvane-mcp", "#{request}\n", 0)
  end
end
