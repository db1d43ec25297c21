package com.nyx.orda.business.io.protocols.rondo;

/** Receives what RondoGetDataInfo finds out about a data set; echoes each call. */
public class RondoInfoSink {
    public void setNbElements(int n) {
        RondoHost.say("setNbElements(" + n + ")");
    }

    public void addAttributeName(String name, int kind) {
        RondoHost.say("addAttributeName(" + name + ", " + kind + ")");
    }

    public void addKeyAttributeName(String name, int kind) {
        RondoHost.say("addKeyAttributeName(" + name + ", " + kind + ")");
    }

    public void addStatisticOnAttribute(String name, float first, float second) {
        RondoHost.say("addStatisticOnAttribute(" + name + ", " + first + ", " + second + ")");
    }

    public void setProperty(String name, String value) {
        RondoHost.say("setProperty(" + name + ", " + value + ")");
    }
}
