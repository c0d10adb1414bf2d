"""The first images in Python: the library through ctypes, without anything to install."""
import ctypes
import os
import sys

TEXT = ctypes.c_char * 512
EXCLUSIVE, NEW_BUFFER, DATA_STREAM, INFINITE, LOG_ERRORS = 4, 0, 5, 0xFFFFFFFF, 1


class DeviceInfo(ctypes.Structure):
    _fields_ = [(name, TEXT) for name in ("device_id", "display_name", "model", "vendor", "serial_number",
                                          "interface_name", "interface_id", "user_name", "version")]
    _fields_ += [("reserved0", ctypes.c_uint64)]
    _fields_ += [(name, TEXT) for name in ("interface_tl_type", "tl_name", "tl_type", "tl_path", "tl_id")]
    _fields_ += [("access_status", ctypes.c_uint32), ("reserved1", ctypes.c_uint8 * 20)]


class DiscoveryInfo(ctypes.Structure):
    _fields_ = [("count", ctypes.c_uint32), ("reserved0", ctypes.c_uint32), ("progress", ctypes.c_double),
                ("running", ctypes.c_uint8), ("reserved1", ctypes.c_uint8 * 7), ("devices", DeviceInfo * 16)]


class Image(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_uint32), ("reserved0", ctypes.c_uint32), ("module", ctypes.c_uint64),
                ("selector", ctypes.c_uint32), ("reserved1", ctypes.c_uint32), ("event_data", ctypes.c_void_p),
                ("event_data_size", ctypes.c_uint64), ("pixels", ctypes.c_void_p), ("size", ctypes.c_uint64),
                ("event_id", ctypes.c_uint64), ("buffer", ctypes.c_uint64), ("frame_id", ctypes.c_uint64),
                ("raw_event_data", ctypes.c_void_p), ("timestamp_ms", ctypes.c_uint64),
                ("timestamp_ns", ctypes.c_uint64), ("width", ctypes.c_uint32), ("height", ctypes.c_uint32),
                ("line_pitch", ctypes.c_uint32), ("channels", ctypes.c_uint32), ("pixel_format", ctypes.c_uint32),
                ("reserved2", ctypes.c_uint32)]


ovi = ctypes.CDLL(os.environ.get("OVI_LIBRARY", "ovi.dll" if os.name == "nt" else "libovi.so.0"))
u32, u64 = ctypes.c_uint32, ctypes.c_uint64


def check(code, what):
    if code != 0:
        text = ctypes.create_string_buffer(300)
        if ovi.get_error_string(code, text) != 0:  # has the sentence of nearly every code
            ovi.oviGetErrorDescription(code, text, u64(len(text)))
        sys.exit(f"{what}: {text.value.decode()} ({code})")


def take_images(device, number):
    stream, event = u64(), u64()
    check(ovi.oviCreateDataStream(device, u32(0), ctypes.byref(stream), u32(10), u64(0)), "open the stream")
    check(ovi.oviRegisterEvent(stream, u32(NEW_BUFFER), ctypes.byref(event), u32(DATA_STREAM)), "register the event")
    check(ovi.oviStartAcquisition(device, u32(INFINITE)), "start")
    for _ in range(number):
        image = ctypes.POINTER(Image)()
        check(ovi.oviWaitForEvent(event, u64(3000), ctypes.byref(image)), "wait for an image")
        pixels = ctypes.string_at(image.contents.pixels, image.contents.size)  # a copy of our own
        print(f"frame {image.contents.frame_id}: {image.contents.width} x {image.contents.height}, "
              f"{len(pixels)} bytes, mean {sum(pixels) / len(pixels):.1f}")
        ovi.oviReleaseImage(stream, image)
    check(ovi.oviStopAcquisition(device), "stop")


for record, name in ((DeviceInfo, b"oviDeviceInfo"), (DiscoveryInfo, b"oviDiscoveryInfo"),
                     (Image, b"oviNewBufferEventData")):
    assert ctypes.sizeof(record) == ovi.get_struct_size(name), f"{name.decode()} has another layout"
found, handle = DiscoveryInfo(), u64()
check(ovi.oviInit(u32(LOG_ERRORS), None, None), "initialise")
try:
    check(ovi.oviDiscoverDevices(ctypes.byref(found), u64(1000), None, None, ctypes.c_uint8(0)), "discover")
    if found.count == 0:
        sys.exit("no camera was found")
    check(ovi.oviOpenDevice(found.devices[0].device_id, ctypes.byref(handle), u64(1000), u32(EXCLUSIVE)), "open")
    take_images(handle, 5)
finally:
    ovi.oviClose()  # closes what is open
