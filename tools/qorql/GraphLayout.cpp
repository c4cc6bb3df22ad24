// The library is loaded by its name, so that the program neither needs it to start nor its headers to be built; of its
// functions those are used whose form has stayed the same.
// SPDX-License-Identifier: Apache-2.0
#include "GraphLayout.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace {

class Library {
 public:
  // The first of the names that can be loaded. It stays loaded: its plugins keep what they have registered.
  Library(const char* name, const char* older) : _handle(dlopen(name, RTLD_NOW | RTLD_GLOBAL | RTLD_NODELETE)) {
    if (_handle == nullptr) _handle = dlopen(older, RTLD_NOW | RTLD_GLOBAL | RTLD_NODELETE);
    if (_handle == nullptr) {
      throw std::runtime_error(std::string("a picture needs graphviz (Debian's package libgvc6), and ") + older +
                               " cannot be loaded; -o dot prints the graph without it");
    }
  }
  template <class Function>
  Function* find(const char* name) const {
    void* const found = dlsym(_handle, name);
    if (found == nullptr) throw std::runtime_error(std::string("graphviz has no function ") + name);
    return reinterpret_cast<Function*>(found);
  }

 private:
  void* _handle;
};

// What the functions make and take, known by its address alone.
struct Context;
struct Graph;

struct Graphviz {
  Library graphs{"libcgraph.so.8", "libcgraph.so.6"};
  Library layouts{"libgvc.so.7", "libgvc.so.6"};
  Graph* (*read)(const char*) = graphs.find<Graph*(const char*)>("agmemread");
  int (*close)(Graph*) = graphs.find<int(Graph*)>("agclose");
  Context* (*context)() = layouts.find<Context*()>("gvContext");
  int (*freeContext)(Context*) = layouts.find<int(Context*)>("gvFreeContext");
  int (*layout)(Context*, Graph*, const char*) = layouts.find<int(Context*, Graph*, const char*)>("gvLayout");
  int (*freeLayout)(Context*, Graph*) = layouts.find<int(Context*, Graph*)>("gvFreeLayout");
  int (*render)(Context*, Graph*, const char*,
                std::FILE*) = layouts.find<int(Context*, Graph*, const char*, std::FILE*)>("gvRender");
};

// What is written to the stream that it gives to the function.
template <class Write>
std::string written(const Write& write) {
  char* text = nullptr;
  std::size_t length = 0;
  std::FILE* const stream = open_memstream(&text, &length);
  if (stream == nullptr) throw std::bad_alloc();
  const int error = write(stream);
  std::fclose(stream);
  const std::unique_ptr<char, void (*)(void*)> owner(text, std::free);
  if (error != 0) throw std::runtime_error("graphviz cannot draw the picture");
  return {text, length};
}

constexpr const char* kPageStart = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
<title>Contents</title>
<style>
:root { color-scheme: light dark; }
body { margin: 0; padding: 1rem; background: #f5f6f8; color: #1d2433; font: 15px/1.5 system-ui, sans-serif; }
label { position: fixed; top: .5rem; right: 1rem; padding: .2rem .6rem; border-radius: .3rem; background: inherit; }
svg > g > polygon:first-of-type { fill: none; stroke: none; }
body:has(#fit:checked) svg { width: 100%; height: auto; max-height: 95vh; }
@media (prefers-color-scheme: dark) {
  body { background: #12151b; color: #e6e9ef; }
  .node path, .node polygon, .node ellipse { fill: #222936; }
  .node text { fill: #e6e9ef; }
  .edge text, .cluster text { fill: #8d97a8; }
}
</style>
</head>
<body>
<label><input type="checkbox" id="fit"/> whole picture</label>
)html";

}  // namespace

std::string svgOf(const std::string& dot) {
  static const Graphviz library;
  const std::unique_ptr<Context, int (*)(Context*)> context(library.context(), library.freeContext);
  const std::unique_ptr<Graph, int (*)(Graph*)> graph(library.read(dot.c_str()), library.close);
  if (graph == nullptr || library.layout(context.get(), graph.get(), "dot") != 0) {
    throw std::runtime_error("graphviz cannot lay out the picture");
  }
  std::string svg =
      written([&](std::FILE* stream) { return library.render(context.get(), graph.get(), "svg", stream); });
  library.freeLayout(context.get(), graph.get());
  return svg;
}

std::string htmlOf(const std::string& dot) {
  const std::string svg = svgOf(dot);
  return kPageStart + svg.substr(std::min(svg.find("<svg"), svg.size())) + "</body>\n</html>\n";
}
