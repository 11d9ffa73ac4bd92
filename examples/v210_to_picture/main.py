#!/usr/bin/env python3
"""usage: main.py FRAME WIDTH HEIGHT PICTURE makes a picture of a raw v210 frame in Rec. 709."""
import sys

import kestrix
import numpy as np
from PIL import Image

if len(sys.argv) != 5:
    sys.exit(__doc__)
try:
    frame, width, height = np.fromfile(sys.argv[1], np.uint8), int(sys.argv[2]), int(sys.argv[3])
    rgba = kestrix.convert(frame, "v210", "RGBA", width, height, src_colorspace="709",
                           src_row_bytes=frame.size // max(height, 1))
    Image.fromarray(rgba[..., :3]).save(sys.argv[4])
except (OSError, ValueError) as error:
    sys.exit(f"v210_to_picture: {error}")
