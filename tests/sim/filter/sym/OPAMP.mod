* Single-pole operational amplifier: open-loop gain 100000 (100 dB), pole at 10 Hz,
* unity-gain frequency 1 MHz; output buffered by an ideal voltage source.
.SUBCKT OPAMP INP INN OUT
RIN INP INN 10MEG
G1 0 N1 INP INN 1M
R1 N1 0 100MEG
C1 N1 0 159.155P
E1 OUT 0 N1 0 1
.ENDS OPAMP
