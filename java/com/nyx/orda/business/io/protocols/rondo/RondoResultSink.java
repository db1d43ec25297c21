package com.nyx.orda.business.io.protocols.rondo;

import java.util.ArrayList;
import java.util.List;

/** Collects the store names that RondoGetContents hands over, one call each. */
public class RondoResultSink {
    private final List<String> names = new ArrayList<>();

    public void append(String name) {
        names.add(name);
        RondoHost.say("append(" + name + ")");
    }

    public List<String> getNames() {
        return names;
    }
}
