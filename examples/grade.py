#!/usr/bin/env python3
"""Grades a picture through a LUT file: grade.py LOOK.CUBE PHOTO.JPG GRADED.PNG [STRENGTH]"""

import sys

import cv2
import lumvane

look, photo, graded = sys.argv[1:4]
strength = int(sys.argv[4]) if len(sys.argv) > 4 else 100
with lumvane.Lut(look) as lut:
    cv2.imwrite(graded, lut(cv2.imread(photo), strength, order="BGR"))
