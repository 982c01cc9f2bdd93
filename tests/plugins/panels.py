#!/usr/bin/env python3
"""Compares the plug-ins' panels in Kdenlive and Shotcut with the built plug-ins: panels.py SOURCES PLUGIN..."""

import ctypes
import pathlib
import re
import struct
import sys
import xml.etree.ElementTree


# Calls a function that fills a structure, and returns its fields, with texts for pointers.
def described(function, layout, *index):
    buffer = ctypes.create_string_buffer(struct.calcsize(layout))
    function(buffer, *index)
    return [ctypes.string_at(field).decode() if kind == "P" else field
            for kind, field in zip(layout, struct.unpack(layout, buffer))]


def check(file, found, expected):
    if found != expected:
        sys.exit(f"{file}:\n{found}, but the plug-in has\n{expected}")


for path in sys.argv[2:]:
    plugin, value = ctypes.CDLL(path), ctypes.c_double()
    plugin.f0r_construct.restype = ctypes.c_void_p
    instance = ctypes.c_void_p(plugin.f0r_construct(64, 64))
    title, *_, count, _ = described(plugin.f0r_get_plugin_info, "PPiiiiiiP")
    service, numbers, texts = f"frei0r.{pathlib.Path(path).stem}", {}, set()
    for index in range(count):
        name, kind, explanation = described(plugin.f0r_get_param_info, "PiP", index)
        if kind == 4:
            texts.add(name)
            continue
        plugin.f0r_get_param_value(instance, ctypes.byref(value), index)
        # The range is explained as "0 to 1 is -100 to 100 percent" or "0 to 1 is ..., the library's -1 to 1".
        lowest, highest = map(int, re.findall(r"(-?\d+) to (-?\d+)", explanation)[-1])
        numbers[name] = value.value, 100 * lowest // highest, 100  # default, range in percent

    file = f"{sys.argv[1]}/plugins/kdenlive/{service.replace('.', '_')}.xml"
    effect = xml.etree.ElementTree.parse(file).getroot()
    files = {p.get("name") for p in effect.iterfind("parameter[@type='url']")}
    check(file, [effect.get("tag"), effect.get("id"), effect.findtext("name"), files - texts],
          [service, service, title, set()])
    # The factor divides what the panel shows, but not the default.
    found = {p.get("name"): [float(p.get("default")), float(p.get("min")), float(p.get("max")) / float(p.get("factor"))]
             for p in effect.iterfind("parameter[@type='animated']")}
    check(file, found, {name: [default, 0, 1] for name, (default, *_) in numbers.items()})

    file = f"{sys.argv[1]}/plugins/shotcut/meta_{service.removeprefix('frei0r.lumvane_')}.qml"
    meta = pathlib.Path(file).read_text()
    check(file, re.search("name: '(.*)'", meta)[1], title)
    check(file, re.findall("(?:mlt_service|property): '(.*)'", meta), [service, *numbers])
    check(file, re.search(r"simpleProperties: \[(.*)\]", meta)[1], str([*numbers])[1:-1])
    panel = pathlib.Path(file).with_name(re.search("qml: '(.*)'", meta)[1]).read_text()
    found = {}
    for name, *ends in re.findall(r"name: '(\w+)',.* lowest: (-?\d+), highest: (-?\d+), start: (-?\d+)", panel):
        lowest, highest, start = map(int, ends)
        found[name] = (start - lowest) / (highest - lowest), lowest, highest
    check(file, found, numbers)
    check(file, set(re.findall(r"filter\.[gs]et\('(\w+)'", panel)) - texts, set())
