"""Writes BMP, TIFF and EPS files the way other programs write them (Pillow, ImageMagick, libtiff's
tiffcp, Ghostscript, and a few hand-made header variants) into the folder given as argument.
Each file is named for what it holds."""
import os
import struct
import subprocess
import sys

from PIL import Image

folder = sys.argv[1]


def path(name):
    return os.path.join(folder, name)


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def pattern(mode, width=37, height=23):
    image = Image.new("RGB", (width, height))
    image.putdata([((x * 7 + y * 3) % 256, (x * 11 + 50) % 256, (y * 13 + x) % 256)
                   for y in range(height) for x in range(width)])
    return image.convert(mode) if mode != "RGB" else image


def grey16(width=37, height=23):
    image = Image.new("I;16", (width, height))
    image.putdata([(x * 1777 + y * 901 + 3) % 65536 for y in range(height) for x in range(width)])
    return image


def patched(source, name, offset, fmt, value):
    data = bytearray(open(path(source), "rb").read())
    struct.pack_into(fmt, data, offset, value)
    open(path(name), "wb").write(data)


def set_tiff_short(source, name, tag, value):
    """Copies a little-endian TIFF with the inline SHORT value of `tag` replaced."""
    data = bytearray(open(path(source), "rb").read())
    directory = struct.unpack_from("<I", data, 4)[0]
    for index in range(struct.unpack_from("<H", data, directory)[0]):
        entry = directory + 2 + 12 * index
        if struct.unpack_from("<H", data, entry)[0] == tag:
            struct.pack_into("<H", data, entry + 8, value)
    open(path(name), "wb").write(data)


def cut(source, name, keep):
    open(path(name), "wb").write(open(path(source), "rb").read()[:keep])


rgb = pattern("RGB")
rgb.save(path("pillow_rgb24.bmp"))
pattern("L").save(path("pillow_grey8.bmp"))
pattern("P").save(path("pillow_palette256.bmp"))
rgb.quantize(16).save(path("pillow_palette16.bmp"))
pattern("1").save(path("pillow_1bit.bmp"))
rgb.save(path("pillow_rgb24.tif"))
pattern("L").save(path("pillow_grey8.tif"))
grey16().save(path("pillow_grey16_little_endian.tif"))
pattern("RGBA").save(path("pillow_rgba.tif"))
pattern("P").save(path("pillow_palette8_little_endian.tif"))
pattern("1").save(path("pillow_1bit.tif"))
pattern("CMYK").save(path("pillow_cmyk.tif"))
pattern("F").save(path("pillow_float.tif"))
pattern("I").save(path("pillow_signed32.tif"))
pattern("LA").save(path("pillow_grey_alpha.tif"))
pattern("YCbCr").save(path("pillow_ycbcr.tif"))
rgb.save(path("pillow_lzw.tif"), compression="tiff_lzw")
rgb.save(path("pillow_deflate.tif"), compression="tiff_adobe_deflate")
rgb.save(path("pillow_packbits.tif"), compression="packbits")

run("tiffcp", "-B", path("pillow_grey8.tif"), path("tiffcp_grey8_big_endian.tif"))
run("tiffcp", "-B", path("pillow_grey16_little_endian.tif"), path("tiffcp_grey16_big_endian.tif"))
run("tiffcp", "-B", path("pillow_rgb24.tif"), path("tiffcp_rgb24_big_endian.tif"))
run("tiffcp", "-r", "5", path("pillow_rgb24.tif"), path("tiffcp_rgb24_strips.tif"))
run("tiffcp", "-B", path("pillow_palette8_little_endian.tif"), path("tiffcp_palette8_big_endian.tif"))
run("tiffcp", "-t", "-w", "16", "-l", "16", path("pillow_rgb24.tif"), path("tiffcp_tiled.tif"))
run("tiffcp", "-p", "separate", path("pillow_rgb24.tif"), path("tiffcp_planar.tif"))
run("tiffcp", "-c", "lzw", path("pillow_grey8.tif"), path("tiffcp_lzw.tif"))

run("convert", path("pillow_rgb24.bmp"), path("magick_default_v5.bmp"))
run("convert", path("pillow_rgb24.bmp"), "BMP3:" + path("magick_bmp3_rgb24.bmp"))
run("convert", path("pillow_rgb24.bmp"), "BMP2:" + path("magick_os2.bmp"))
run("convert", path("pillow_rgb24.bmp"), "-colors", "16", "BMP3:" + path("magick_4bit.bmp"))
run("convert", path("pillow_rgb24.bmp"), "-compress", "none", path("magick_rgb24.tif"))
run("convert", path("pillow_rgb24.bmp"), "-compress", "none", "-depth", "16",
    path("magick_rgb48.tif"))
run("convert", path("pillow_rgb24.bmp"), "-compress", "none", "TIFF64:" + path("magick_bigtiff.tif"))
run("convert", path("pillow_rgb24.bmp"), "-orient", "bottom-left", "-compress", "none",
    path("magick_orientation4.tif"))
rgb.save(path("pillow.eps"))
run("gs", "-q", "-dNOPAUSE", "-dBATCH", "-sDEVICE=eps2write", "-sOutputFile=" + path("ghostscript.eps"),
    "-c", "newpath 10 10 moveto 50 50 lineto stroke showpage")

patched("pillow_rgb24.bmp", "hand_top_down.bmp", 22, "<i", -23)
patched("pillow_rgb24.bmp", "hand_zero_width.bmp", 18, "<i", 0)
patched("pillow_rgb24.bmp", "hand_rle8.bmp", 30, "<I", 1)
cut("pillow_rgb24.bmp", "hand_cut_short.bmp", 54 + 3 * 112)
cut("pillow_grey8.tif", "hand_cut_short.tif", 300)
set_tiff_short("pillow_grey8.tif", "hand_white_is_zero8.tif", 262, 0)
set_tiff_short("pillow_grey16_little_endian.tif", "hand_white_is_zero16.tif", 262, 0)

# 4 samples of 16384 x 65000 in 206 bytes: the line length cut to 16 bits is 0.
bomb = struct.pack(">2sHIH", b"MM", 42, 8, 8)
for tag, kind, count, value in [(256, 3, 1, 16384 << 16), (257, 3, 1, 65000 << 16), (258, 3, 4, 110),
                                (259, 3, 1, 1 << 16), (262, 3, 1, 2 << 16), (273, 4, 1, 118),
                                (277, 3, 1, 4 << 16), (278, 4, 1, 65000)]:
    bomb += struct.pack(">HHII", tag, kind, count, value)
bomb += struct.pack(">I4H", 0, 8, 8, 8, 8) + bytes(88)
open(path("hand_four_samples_16384x65000.tif"), "wb").write(bomb)
