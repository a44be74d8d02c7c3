// The options that commands on models share: from where it is seen, its unit, threads.
#pragma once

#include <zbr-drawing/view.h>

#include <string>

#include "app/libraries.h"

namespace tool {

struct ViewOptions {
  std::string view;      // a name; by default iso
  std::string look, up;  // three numbers, separated by commas, in the place of a name
  std::string axes;      // "z" or "y": the axis of the model that points up in named views; empty: as the file's format says
};

// The view chosen by one set of options. Fails when they contradict each other or make no view.
View ChooseView(const ViewOptions& options, bool yUpInFile);

// The standard view of this name, and the one along --look with --up, which may be empty. Both fail, naming the option.
View ViewByName(const std::string& name, bool yUp);
View LookView(const std::string& look, const std::string& up, bool yUp);

// Whether y points up, by the option or else by the file.
bool YUp(const std::string& axes, bool yUpInFile);

// The code of a unit by its name. Fails when there is none of this name.
int UnitOption(const std::string& name);

// Threads to use for --jobs, 0 when it was not given.
unsigned ThreadCount(unsigned jobs);

// What `make` gives; its failures name the option.
template <class Make>
auto ForOption(const std::string& option, Make make) {
  try {
    return make();
  } catch (const Failure& failure) {
    throw Failure(option, failure.what());
  }
}

// "x,y,z". `option` is named when it fails.
ZBR_PT3 ParseVector(const std::string& text, const std::string& option);

}  // namespace tool
