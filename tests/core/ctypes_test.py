"""The core API through the C ABI from Python (ctypes): a second language sees the same codes,
records and error reports."""
import ctypes
import sys

lib = ctypes.CDLL(sys.argv[1])
u32, u16 = ctypes.c_uint32, ctypes.c_uint16
lib.ZEP_image_create.restype = u32
lib.ZEP_image_get_parameter.argtypes = [u32, u16]
lib.ZEP_image_get_parameter.restype = u32
lib.ZEP_image_set_parameter.argtypes = [u32, u16, u32]
lib.ZEP_image_set_parameter.restype = u32
lib.ZEP_ImageMake.argtypes = [u32, u32, u32, u16, u32]
lib.ZEP_image_check.argtypes = [u32]
lib.ZEP_image_check.restype = u32
lib.ZEP_image_set_infilename.argtypes = [u32, ctypes.c_char_p]
lib.ZEP_image_get_infilename.argtypes = [u32]
lib.ZEP_image_get_infilename.restype = ctypes.c_char_p

HANDLER = ctypes.CFUNCTYPE(u32, u32, ctypes.c_char_p, u32, ctypes.c_char_p)
reports = []


@HANDLER
def record(library, function, code, message):
    reports.append((function.decode(), code, message.decode()))
    return 1


lib.ZEP_Init()
lib.ZEP_ErrHandlerInstall(record)
image = lib.ZEP_image_create()
assert 1 <= image <= 0xFFFF, image
lib.ZEP_ImageMake(image, 3, 1, 7, 0x112233)
assert lib.ZEP_image_get_parameter(image, 15) == 10
assert lib.ZEP_image_get_parameter(image, 22) == 0x00044200
assert lib.ZEP_image_set_parameter(image, 10, 200) == 0x10070000
assert reports[-1] == ("ZEP_image_set_parameter", 0x10070000, "Unrecognized image type"), reports
assert lib.ZEP_image_check(image) == 0x10050010
assert reports[-1] == ("ZEP_image_check", 0x10050010, "Unrecognised image"), reports
lib.ZEP_image_set_infilename(image, b"x" * 200)
assert lib.ZEP_image_get_infilename(image) == b"x" * 127
lib.ZEP_ErrHandlerInstall(None)
print("ctypes: ok")
