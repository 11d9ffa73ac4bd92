"""Lists the pixel formats, or the conversions from one: python3 -m kestrix [FORMAT]"""

import argparse
import signal

import kestrix


def main() -> None:
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)  # `| head` is no error
    parser = argparse.ArgumentParser(
        prog="python3 -m kestrix", description="Lists pixel formats and conversions."
    )
    parser.add_argument("format", nargs="?", help="list the conversions from this format")
    parser.add_argument("--version", action="version", version=f"kestrix {kestrix.__version__}")
    arguments = parser.parse_args()
    if arguments.format is None:
        for format in kestrix.formats():
            print(f"{format.name}  {format.words}")
        return
    try:
        found = kestrix.conversions(arguments.format)
    except kestrix.Error as error:
        parser.error(str(error))
    for conversion in found:
        src, dst = (
            f"{name}:{colorspace}" if colorspace else name
            for name, colorspace in (
                (conversion.src_format, conversion.src_colorspace),
                (conversion.dst_format, conversion.dst_colorspace),
            )
        )
        print(f"{src:9}  {dst}")


main()
