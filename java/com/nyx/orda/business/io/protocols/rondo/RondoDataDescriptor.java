package com.nyx.orda.business.io.protocols.rondo;

/** Names one data set: the server, the project on it and the store. */
public class RondoDataDescriptor {
    private final String serverHost;
    private final String project;
    private final String dataName;
    private final String rondoType;

    public RondoDataDescriptor(String serverHost, String project, String dataName, String rondoType) {
        this.serverHost = serverHost;
        this.project = project;
        this.dataName = dataName;
        this.rondoType = rondoType;
    }

    public String getProject() {
        return project;
    }

    public String getServerHost() {
        return serverHost;
    }

    public String getDataName() {
        return dataName;
    }

    public String getRONDOType() {
        return rondoType;
    }
}
