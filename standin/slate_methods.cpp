// The Slate: its window, its artifact with frontmatter, and the file tabs opened on it. Saving writes no file: the
// answer names the place where the application would have put it.
#include <algorithm>
#include <array>
#include <limits>

#include "core/paths.h"
#include "platform/platform.h"
#include "standin/json_access.h"
#include "standin/methods.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

constexpr std::array<std::string_view, 5> reservedKeys{"title", "created", "updated", "lumen_blocks", "source"};
constexpr std::int64_t defaultChunk = 20000;

class Slate {
 public:
  explicit Slate(const JSON::Object& world) {
    const JSON::Object& data = objectIn(world, "slate");
    open_ = flagIn(data, "open");
    routing_ = flagIn(data, "routingEnabled");
    title_ = textIn(data, "title", "Untitled");
    vault_ = textIn(data, "vault", "Documents");
    transcriptCount_ = integerIn(data, "transcriptCount");
    blocks_ = listIn(data, "blocks");
    frontmatter_ = objectIn(data, "frontmatter");
    files_ = listIn(data, "openFiles");
  }

  JSON open(const Arguments&) {
    open_ = true;
    return JSON::Object{{"open", true}, {"routingEnabled", routing_}};
  }

  JSON close(const Arguments&) {
    const bool wasOpen = std::exchange(open_, false);
    return JSON::Object{{"open", false}, {"wasOpen", wasOpen}};
  }

  JSON clear(const Arguments&) {
    const bool something = !isEmpty() || transcriptCount_ > 0;
    blocks_.clear();
    frontmatter_ = {};
    transcriptCount_ = 0;
    return JSON::Object{{"cleared", something}};
  }

  JSON save(const Arguments& arguments) {
    const std::string name = arguments.optionalText("name").value_or(title_);
    requireOpen();
    if (isEmpty()) throw invalid("the slate is empty");
    if (name.empty() || name.front() == '.' || name.find('/') != std::string::npos) {
      throw invalid("not a file name: \"" + name + "\"", JSON::Object{{"argument", "name"}});
    }
    const std::string filename = name + ".md";
    const std::string directory = joinPath(platform::homeDirectory(), vault_);
    return JSON::Object{{"path", joinPath(directory, filename)}, {"filename", filename}};
  }

  JSON setRouting(const Arguments& arguments) {
    routing_ = arguments.flag("enabled");
    return JSON::Object{{"routingEnabled", routing_}};
  }

  JSON get(const Arguments&) {
    JSON::Array tabs;
    for (const JSON& value : files_) {
      const JSON::Object& file = objectOf(value);
      JSON::Object tab{{"path", textIn(file, "path")}, {"name", textIn(file, "name")}, {"loaded", isLoaded(file)}};
      if (isLoaded(file)) tab.set("totalChars", codePointCount(textIn(file, "content")));
      tabs.emplace_back(std::move(tab));
    }
    return JSON::Object{{"open", open_},
                        {"routingEnabled", routing_},
                        {"title", title_},
                        {"artifact", artifact()},
                        {"frontmatter", frontmatter_},
                        {"blockCount", blocks_.size()},
                        {"transcriptCount", transcriptCount_},
                        {"openFiles", std::move(tabs)}};
  }

  JSON setFrontmatter(const Arguments& arguments) {
    const std::string key = arguments.text("key");
    const std::string value = arguments.text("value");
    requireOpen();
    requireFree(key);
    if (key.empty() || key.find_first_of(":\n") != std::string::npos) throw invalid("not a frontmatter key: " + key);
    const bool isNew = frontmatter_.find(key) == nullptr;
    frontmatter_.set(key, value);
    return JSON::Object{{"key", key}, {"value", value}, {"added", isNew}, {"keys", keys()}};
  }

  JSON removeFrontmatter(const Arguments& arguments) {
    const std::string key = arguments.text("key");
    requireOpen();
    requireFree(key);
    if (frontmatter_.find(key) == nullptr) throw invalid("unknown key: " + key, JSON::Object{{"keys", keys()}});
    frontmatter_.remove(key);
    return JSON::Object{{"removed", key}, {"keys", keys()}};
  }

  JSON readOpenFile(const Arguments& arguments) {
    const std::string path = arguments.text("path");
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const std::int64_t offset = arguments.integer("offset", 0, 0, most);
    const std::int64_t limit = arguments.integer("limit", defaultChunk, 0, most);
    const JSON::Object* file = findIn(files_, "path", path);
    if (file == nullptr) throw invalid("unknown path", JSON::Object{{"openPaths", column(files_, "path")}});
    if (!isLoaded(*file)) throw invalid("not loaded yet", JSON::Object{{"path", path}});
    const std::string content = textIn(*file, "content");
    const std::string_view chunk =
        codePointSlice(content, static_cast<std::size_t>(offset), static_cast<std::size_t>(limit));
    return JSON::Object{{"ok", true},
                        {"name", textIn(*file, "name")},
                        {"path", path},
                        {"totalChars", codePointCount(content)},
                        {"returnedChars", codePointCount(chunk)},
                        {"offset", offset},
                        {"content", chunk}};
  }

 private:
  static bool isLoaded(const JSON::Object& file) { return file.find("content") != nullptr; }

  bool isEmpty() const { return blocks_.empty(); }

  void requireOpen() const {
    if (!open_) throw invalid("the slate window is not open");
  }

  static void requireFree(const std::string& key) {
    if (std::find(reservedKeys.begin(), reservedKeys.end(), key) == reservedKeys.end()) return;
    throw invalid("reserved key: " + key,
                  JSON::Object{{"reservedKeys", JSON::Array(reservedKeys.begin(), reservedKeys.end())}});
  }

  JSON::Array keys() const {
    JSON::Array names;
    for (const JSONMember& entry : frontmatter_) names.emplace_back(entry.key);
    return names;
  }

  std::string artifact() const {
    std::string markdown;
    for (const JSON& block : blocks_) {
      if (!markdown.empty()) markdown += "\n\n";
      markdown += "<!-- block:" + textIn(objectOf(block), "id") + " -->\n" + textIn(objectOf(block), "markdown");
    }
    return markdown;
  }

  bool open_ = false;
  bool routing_ = false;
  std::string title_;
  std::string vault_;
  std::int64_t transcriptCount_ = 0;
  JSON::Array blocks_;
  JSON::Object frontmatter_;
  JSON::Array files_;
};

}  // namespace

void addSlateMethods(MethodTable& table, const JSON::Object& world) {
  const auto slate = std::make_shared<Slate>(world);
  addMethod(table, slate, "slate_open", Gate::changes, &Slate::open);
  addMethod(table, slate, "slate_close", Gate::changes, &Slate::close);
  addMethod(table, slate, "slate_clear", Gate::changes, &Slate::clear);
  addMethod(table, slate, "slate_save", Gate::changes, &Slate::save);
  addMethod(table, slate, "slate_set_routing", Gate::changes, &Slate::setRouting);
  addMethod(table, slate, "get_slate", Gate::none, &Slate::get);
  addMethod(table, slate, "slate_set_frontmatter", Gate::changes, &Slate::setFrontmatter);
  addMethod(table, slate, "slate_remove_frontmatter", Gate::changes, &Slate::removeFrontmatter);
  addMethod(table, slate, "read_open_file", Gate::none, &Slate::readOpenFile);
}

}  // namespace orvane::standin
