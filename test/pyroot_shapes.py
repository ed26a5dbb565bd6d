"""The stored shapes of the two counters with two shapes, once PyROOT has loaded headers and classes.

Usage: pyroot_shapes.py FOLDER-OF-LIBRARIES INCLUDE-FOLDER SCRATCH-FILE
"""

import sys

import ROOT


def shape(class_name, member):
    """Type and dimensions of a member in the class description that goes to file."""
    element = ROOT.TClass.GetClass(class_name).GetStreamerInfo().GetElements().FindObject(member)
    return element.GetTypeName(), [element.GetMaxIndex(i) for i in range(element.GetArrayDim())]


def main(libraries, includes, scratch):
    ROOT.gInterpreter.AddIncludePath(includes)
    assert ROOT.gSystem.Load(f"{libraries}/libStnEvent.so") >= 0
    header = ROOT.TStnEventHeader()
    header.SetDeadTimeCounter(0x100000002, 6)
    header.SetVetoTimeCounter(0x300000004)
    assert header.GetDeadTimeCounter(6) == 0x100000002
    assert header.GetVetoTimeCounter() == 0x300000004
    assert shape("TStnEventHeader", "fDeadTimeCounter") == ("unsigned int", [2, 6])
    assert shape("TStnEventHeader", "fVetoTimeCounter") == ("unsigned int", [2, 1])

    with ROOT.TFile.Open(scratch, "RECREATE") as file:
        file.WriteObject(header, "header")
    with ROOT.TFile.Open(scratch) as file:
        read = file.Get("header")
        assert read.GetDeadTimeCounter(6) == 0x100000002
        assert read.GetVetoTimeCounter() == 0x300000004
    print("shapes as stored, values as written")


main(*sys.argv[1:])
