// A module of tslib by itself, with samples of our own instead of a device below it. What a module is made of: the
// header for modules is not among those that are installed.
#pragma once

#include <cstdio>
#include <dlfcn.h>
#include <string>
#include <tslib.h>

extern "C" {
struct tslib_module_info;
struct tslib_ops {
    int (*read)(tslib_module_info *info, ts_sample *samples, int count);
    int (*readMt)(tslib_module_info *info, ts_sample_mt **samples, int slots, int count);
    int (*fini)(tslib_module_info *info);
};
struct tslib_module_info {
    tsdev *dev;
    tslib_module_info *next;
    void *handle;
    const tslib_ops *ops;
};
}

// Null when it is not installed. It lives as long as the process.
inline tslib_module_info *loadModule(const std::string &name, const char *parameters, tslib_module_info *below)
{
    void *library = ::dlopen((TYX_TSLIB_MODULES "/" + name + ".so").c_str(), RTLD_NOW);
    using Init = tslib_module_info *(*)(tsdev *, const char *);
    const auto init = library ? reinterpret_cast<Init>(::dlsym(library, (name + "_mod_init").c_str())) : nullptr;
    static tsdev *panel = ts_open("/dev/null", 1);
    tslib_module_info *module = init && panel ? init(panel, parameters) : nullptr;
    if (!module)
        return nullptr;
    module->dev = panel;
    module->next = below;
    return module;
}
