.MODEL diode D
