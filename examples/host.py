#!/usr/bin/env python3
"""A host in Python. It does what host.c does: a region of interest, three pictures triggered by
software, picture.ppm, settings.mcf. The first step that fails ends the program with 1.

    host.py [DIRECTORY]     where the libraries are; if left out, those of the installation
"""

import ctypes
import pathlib
import sys
from ctypes import POINTER, byref, c_char_p, c_double, c_int, c_int32, c_int64, c_size_t
from ctypes import c_uint, c_uint8, c_uint32, c_void_p

PORT, WIDTH, HEIGHT, PICTURES = 0, 640, 480, 3
INT32, DOUBLE = 2, 5  # FgParamTypes
VALUE_OF_NAME = 0x1100  # VelmoraInfo


class Grabber(ctypes.Structure):
    """Fg_Struct: all that the applet asks of a host's handle."""

    _fields_ = [("applet", c_void_p)]


class Picture(ctypes.Structure):
    """VirtualBoardPicture"""

    _fields_ = [
        ("buffer", c_uint32),
        ("port", c_uint32),
        ("number", c_int64),
        ("time", c_int64),
        ("pixels", POINTER(c_uint8)),
        ("bytes", c_size_t),
        ("width", c_uint32),
        ("height", c_uint32),
        ("complete", c_int32),
    ]


GRABBER = POINTER(Grabber)
# Result and arguments of every function that is called; pointers would be cut to 32 bits otherwise.
APPLET = {
    "Std_entry": (c_void_p, c_void_p, POINTER(c_int), c_int),
    "Fg_FreeGrabber": (c_int, GRABBER),
    "Info": (c_int, c_int, c_int, c_int, c_char_p, c_void_p),
    "Fg_getParameterIdByName": (c_int, GRABBER, c_char_p),
    "Fg_setParameterWithType": (c_int, GRABBER, c_int, c_void_p, c_uint, c_int),
    "Fg_AcquireEx": (c_int, GRABBER, c_uint32, c_int64, c_int32, c_void_p),
    "Fg_stopAcquireEx": (c_int, GRABBER, c_uint32, c_int64, c_int32),
    "Fg_saveConfig": (c_int, GRABBER, c_char_p),
}
BOARD = {
    "VirtualBoard_createDevice": (c_void_p,),
    "VirtualBoard_destroyDevice": (None, c_void_p),
    "VirtualBoard_createMemory": (c_void_p, c_uint32, c_size_t, c_void_p),
    "VirtualBoard_destroyMemory": (c_int, c_void_p),
    "VirtualBoard_takePicture": (c_int, c_void_p, c_double, POINTER(Picture)),
    "VirtualBoard_returnBuffer": (c_int, c_void_p, c_uint32),
}


def load(path, functions):
    library = ctypes.CDLL(str(path))
    for name, (result, *arguments) in functions.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    return library


def check(step, code):
    """Prints a step with its code and raises an error if it failed."""
    print(f"{step}: {code}")
    if code != 0:
        raise RuntimeError(f"{step} failed: {code}")


def set_parameter(applet, grabber, name, value):
    """Sets an integer, a float or the name of a value."""
    parameter = applet.Fg_getParameterIdByName(grabber, name.encode())
    if isinstance(value, str):
        value = applet.Info(VALUE_OF_NAME, 0, 0, value.encode(), None)
    number, kind = (c_double(value), DOUBLE) if isinstance(value, float) else (c_uint32(value), INT32)
    check(name, applet.Fg_setParameterWithType(grabber, parameter, byref(number), PORT, kind))


def write_picture(picture, name):
    """Binary PPM, whose pixels are red, green, blue."""
    pixels = bytearray(ctypes.string_at(picture.pixels, picture.bytes))
    pixels[0::3], pixels[2::3] = pixels[2::3], pixels[0::3]
    header = f"P6\n{picture.width} {picture.height}\n255\n"
    pathlib.Path(name).write_bytes(header.encode() + pixels)


def acquire(applet, board, grabber, memory):
    check("Fg_AcquireEx", applet.Fg_AcquireEx(grabber, PORT, PICTURES, 0, memory))
    try:
        set_parameter(applet, grabber, "FG_SENDSOFTWARETRIGGER", PICTURES)
        for _ in range(PICTURES):
            picture = Picture()
            check("VirtualBoard_takePicture", board.VirtualBoard_takePicture(memory, 5, picture))
            print(f"picture {picture.number}, complete: {picture.complete}")
            if not picture.complete:
                raise RuntimeError("The camera sent too little.")
            if picture.number == PICTURES:
                write_picture(picture, "picture.ppm")
            returned = board.VirtualBoard_returnBuffer(memory, picture.buffer)
            check("VirtualBoard_returnBuffer", returned)
    finally:
        check("Fg_stopAcquireEx", applet.Fg_stopAcquireEx(grabber, PORT, 0, 0))


def run(applet, board, grabber):
    # The order matters: FG_WIDTH moves the range of FG_XOFFSET, and the queue is switched in the mode
    # that uses it.
    for name, value in {
        "FG_WIDTH": WIDTH,
        "FG_HEIGHT": HEIGHT,
        "FG_XOFFSET": 192,
        "FG_YOFFSET": 272,
        "FG_AREATRIGGERMODE": "ATM_SOFTWARE",
        "FG_TRIGGERSTATE": "TS_ACTIVE",
        "FG_TRIGGERQUEUE_MODE": "FG_ON",
        "FG_TRIGGER_FRAMESPERSECOND": 50.0,  # The pulses of a queue leave at this rate.
    }.items():
        set_parameter(applet, grabber, name, value)
    memory = board.VirtualBoard_createMemory(4, WIDTH * HEIGHT * 3, None)
    if not memory:
        raise MemoryError
    try:
        acquire(applet, board, grabber, memory)
    finally:
        check("VirtualBoard_destroyMemory", board.VirtualBoard_destroyMemory(memory))
    check("Fg_saveConfig", applet.Fg_saveConfig(grabber, b"settings.mcf"))


def main():
    here = pathlib.Path(__file__).resolve().parent
    directory = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here.parents[2] / "lib64"
    applet = load(directory.resolve() / "libVelmora.so", APPLET)
    board = load(directory.resolve() / "libvirtualboard.so", BOARD)
    device = board.VirtualBoard_createDevice()
    try:
        error = c_int()
        grabber = Grabber(applet.Std_entry(device, error, 0))
        check("Std_entry", error.value)
        try:
            run(applet, board, grabber)
        finally:
            check("Fg_FreeGrabber", applet.Fg_FreeGrabber(grabber))
    finally:
        board.VirtualBoard_destroyDevice(device)


if __name__ == "__main__":
    try:
        main()
    except (RuntimeError, MemoryError, OSError) as failure:
        sys.exit(f"host.py: {failure!r}")
