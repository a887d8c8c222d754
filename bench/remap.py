# SPDX-License-Identifier: BSD-3-Clause
"""What bench/vhpano.sh compares with: a panorama by longitude and latitude to a column of cube faces by OpenCV's remap.

Usage: remap.py IN OUT nearest|linear|cubic     prints the seconds that remap itself took"""
import sys
import time

import cv2
import numpy as np

_, source, target, filter = sys.argv
image = cv2.imread(source, cv2.IMREAD_COLOR)
height, width = image.shape[:2]
size = width // 4
p = (2 * np.arange(size, dtype=np.float32) + 1) / size - 1
x, y = np.meshgrid(p, -p)
one = np.ones_like(x)
# From the top: left, right, up, down, back, ahead.
faces = [(-one, y, -x), (one, y, x), (-x, one, -y), (-x, -one, y), (-x, y, one), (x, y, -one)]
dx, dy, dz = (np.concatenate(part) for part in zip(*faces))
u = (np.arctan2(dx, -dz) / np.pi + 1) * (width / 2) - 0.5
v = (0.5 - np.arctan2(dy, np.hypot(dx, dz)) / np.pi) * height - 0.5
filters = {"nearest": cv2.INTER_NEAREST, "linear": cv2.INTER_LINEAR, "cubic": cv2.INTER_CUBIC}
begin = time.perf_counter()
result = cv2.remap(image, u, v, filters[filter], borderMode=cv2.BORDER_WRAP)
print(f"{time.perf_counter() - begin:.3f}")
cv2.imwrite(target, result, [cv2.IMWRITE_TIFF_COMPRESSION, 1])
