#!/usr/bin/env python3
"""Runs a tiny show through the UI test server: cues a slot, takes it, cues the next and takes again, slowly.

usage: demo_take.py FILE     FILE gets the standard output of halcyra, which names the server's port
"""
import sys
import time

from robot import Robot, port_of


def main():
    robot = Robot(port_of(sys.argv[1]))
    robot.ask(operation="raise", objectName="MainWindow")  # without a window manager nobody else gives it the keys
    take = robot.find("TakeControls-Take-Button")
    robot.mouse("double_click", robot.slot(0))
    time.sleep(1)
    robot.mouse("click", robot.find("TakeControls-Swap-Button"))
    robot.mouse("click", take)
    time.sleep(2)
    robot.mouse("double_click", robot.slot(1))
    duration = robot.find("TakeControls-Duration")
    robot.mouse("double_click", duration)
    robot.ask(operation="key_press", keyName="CtrlA")
    for key in "8":
        robot.ask(operation="key_press", keyName=key)
    robot.ask(operation="key_press", keyName="Enter")
    time.sleep(1.5)
    robot.mouse("click", take)


main()
