# Has MyPaint's own library, without its window, open a picture and save it as another: interop-mypaint.py FROM TO.
import sys

sys.path.insert(0, "/usr/lib/mypaint")
import gi

for module, version in (("Gtk", "3.0"), ("Gdk", "3.0"), ("GdkPixbuf", "2.0")):
    gi.require_version(module, version)
import lib.eotf

lib.eotf.set_eotf(1.0)  # blends bytes as they are, as its setting of old versions does, and not linear light
import lib.document

document = lib.document.Document()
document.load(sys.argv[1])
document.layer_stack.background_visible = True  # white paper, which it always writes
document.save(sys.argv[2])
